#pragma once

#include <QRegion>
#include <QWidget>

namespace orvo {

class CompanionModel;
class PetArt;
class PetInteractionView;

/// What the pet's window shows: the pet, below it a capsule that says what it is doing, and over both the
/// layer that takes the pointer.
class DesktopPet final : public QWidget {
    Q_OBJECT

public:
    /// Takes `pointer` over. The model outlives the view.
    DesktopPet(CompanionModel& model, PetInteractionView* pointer, QWidget* parent = nullptr);

    /// The part that is not clear, for a desktop that cannot show through.
    QRegion outline();

Q_SIGNALS:
    void outlineChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    class Capsule;

    void placeCapsule();
    void refreshCapsule();

    CompanionModel& m_model;
    PetArt* m_art;
    Capsule* m_capsule;
    PetInteractionView* m_pointer;
};

}  // namespace orvo
