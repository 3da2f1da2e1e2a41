#include "companion/ui/deskScreens.h"

#include <QGuiApplication>
#include <QScreen>

namespace orvo {
namespace {

double mainHeight() {
    const QScreen* const main = QGuiApplication::primaryScreen();
    return main ? main->geometry().height() : 0;
}

}  // namespace

QList<DeskScreen> deskScreens() {
    const double height = mainHeight();
    QList<DeskScreen> screens;
    for (const QScreen* const screen : QGuiApplication::screens()) {
        const DeskScreen seen{.frame = deskRect(screen->geometry(), height),
                              .visibleFrame = deskRect(screen->availableGeometry(), height)};
        if (screen == QGuiApplication::primaryScreen()) {
            screens.prepend(seen);
        } else {
            screens.append(seen);
        }
    }
    return screens;
}

QPoint toolkitCorner(QPointF origin, QSizeF size) {
    return toolkitRect({origin.x(), origin.y(), size.width(), size.height()}, mainHeight())
        .topLeft()
        .toPoint();
}

}  // namespace orvo
