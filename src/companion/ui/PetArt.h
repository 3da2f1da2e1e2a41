#pragma once

#include "companion/ui/floating.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QPixmap>
#include <QWidget>

namespace orvo {

class CompanionModel;

/// The pet: the built-in one or the person's, as large as the place allows, its pixels kept hard. Floats
/// while the model's motion is on and the desktop allows motion; costs nothing while it does not move or is
/// not seen. The model outlives it.
class PetArt final : public QWidget {
    Q_OBJECT

public:
    enum class Motion { Still, Floating };

    PetArt(CompanionModel& model, Motion motion, QWidget* parent = nullptr);

    /// How far below its place the pet stands right now, in dip.
    int offset() const { return m_offset; }

    QSize sizeHint() const override { return {176, 186}; }

Q_SIGNALS:
    /// It has another outline: it moved, or shows something else.
    void outlineChanged();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    bool isMoving() const;
    void refreshImage();
    void refreshMotion();
    void moveTo(int offset);
    const QPixmap& scaledTo(const QSize& pixels);

    CompanionModel& m_model;
    const Motion m_motion;
    QBasicTimer m_timer;
    QElapsedTimer m_elapsed;
    QPixmap m_scaled;
    int m_offset = 0;
};

}  // namespace orvo
