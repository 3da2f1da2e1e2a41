#pragma once

#include <QMainWindow>

namespace orvo {

/// The application's one window: the menu bar above the root screen. It never closes by itself; whoever owns
/// it decides what a request to close means.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    MainWindow();

    /// Centres the window on its screen, in its full size where the screen has room for it.
    void placeOnScreen();

Q_SIGNALS:
    void closeRequested();

protected:
    void closeEvent(QCloseEvent* event) override;
};

}  // namespace orvo
