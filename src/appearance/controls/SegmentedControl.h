#pragma once

#include <QWidget>

#include <vector>

namespace orvo {

class Segment;

/// A choice of one among a few, side by side. One stop for Tab; the arrow keys move the choice. Its segments
/// are radio buttons to assistive technology. Give it an accessible name: what is being chosen.
class SegmentedControl final : public QWidget {
    Q_OBJECT

public:
    explicit SegmentedControl(const QStringList& options, QWidget* parent = nullptr);

    int currentIndex() const;
    /// Shows a choice of the model's; emits nothing.
    void setCurrentIndex(int index);
    /// An option that cannot be chosen for now, with the reason as its tooltip.
    void setOptionEnabled(int index, bool enabled, const QString& reason = {});

Q_SIGNALS:
    /// The person chose another option.
    void chosen(int index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// Makes the chosen segment the one stop for Tab.
    void adoptChoice();

    std::vector<Segment*> m_segments;
};

}  // namespace orvo
