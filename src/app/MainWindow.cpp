#include "app/MainWindow.h"

#include <QCloseEvent>
#include <QScreen>

namespace orvo {
namespace {

constexpr QSize usualSize(1440, 900);
constexpr QSize smallestSize(1180, 740);

}  // namespace

MainWindow::MainWindow() {
    setWindowTitle(tr("Orvo AI"));
    setMinimumSize(smallestSize);
    resize(usualSize);
}

void MainWindow::placeOnScreen() {
    const QRect room = screen()->availableGeometry();
    resize(usualSize.boundedTo(room.size()).expandedTo(smallestSize));
    move(room.center() - rect().center());
}

void MainWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    Q_EMIT closeRequested();
}

}  // namespace orvo
