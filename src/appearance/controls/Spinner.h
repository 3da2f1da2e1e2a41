#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QWidget>

namespace orvo {

/// A ring of 16 that turns once a second while something is being worked on; stands still when motion is
/// reduced, and costs nothing while it is hidden.
class Spinner final : public QWidget {
    Q_OBJECT

public:
    explicit Spinner(QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QBasicTimer m_timer;
    QElapsedTimer m_clock;
};

}  // namespace orvo
