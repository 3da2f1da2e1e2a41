#pragma once

#include <QObject>

class QPainter;
class QRect;
class QWidget;

namespace orvo {

/// The accent-coloured caret of a text control, blinking at the desktop's pace while the control has the
/// focus.
class Caret final : public QObject {
public:
    /// `widget` owns the caret.
    explicit Caret(QWidget* widget);

    bool isLit() const { return m_lit; }
    /// Shows it for a full beat: the person has just typed or moved.
    void restart();
    /// Paints it in the middle of `cursor`, as Qt reports the place of a caret without width.
    void paint(QPainter& painter, const QRect& cursor) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void setLit(bool lit);

    QWidget* m_widget;
    int m_timer = 0;
    bool m_lit = false;
};

}  // namespace orvo
