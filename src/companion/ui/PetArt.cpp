#include "companion/ui/PetArt.h"

#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/petColors.h"
#include "companion/CompanionModel.h"
#include "platform/images/QtImage.h"
#include "platform/observe.h"

#include <QPainter>
#include <QStyle>
#include <QTimerEvent>

namespace orvo {
namespace {

constexpr int padding = 10;

}  // namespace

PetArt::PetArt(CompanionModel& model, Motion motion, QWidget* parent)
    : QWidget(parent), m_model(model), m_motion(motion) {
    m_elapsed.start();
    observe(m_model, {&CompanionModel::appearanceChanged, &CompanionModel::customImageChanged}, this,
            [this] { refreshImage(); });
    observe(m_model, {&CompanionModel::animateChanged}, this, [this] { refreshMotion(); });
}

bool PetArt::isMoving() const {
    return m_motion == Motion::Floating && isVisible() && m_model.animate() &&
           style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0;
}

void PetArt::refreshImage() {
    m_scaled = {};
    setAccessibleName(m_model.displayName());
    update();
    Q_EMIT outlineChanged();
}

void PetArt::refreshMotion() {
    if (isMoving()) {
        const std::chrono::milliseconds moment(m_elapsed.elapsed());
        moveTo(floating::offsetAt(moment));
        m_timer.start(static_cast<int>(floating::stepFrom(moment).count()), Qt::PreciseTimer, this);
    } else {
        m_timer.stop();
        moveTo(0);
    }
}

void PetArt::moveTo(int offset) {
    if (m_offset == offset) return;
    m_offset = offset;
    update();
    Q_EMIT outlineChanged();
}

bool PetArt::event(QEvent* event) {
    const bool handled = QWidget::event(event);
    switch (event->type()) {
        case QEvent::Show:
        case QEvent::Hide:
        // The desktop's wish about motion comes with the style.
        case QEvent::StyleChange:
            refreshMotion();
            break;
        default:
            break;
    }
    return handled;
}

void PetArt::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_timer.timerId()) return refreshMotion();
    QWidget::timerEvent(event);
}

const QPixmap& PetArt::scaledTo(const QSize& pixels) {
    if (m_scaled.size() != pixels) {
        const QImage image = QtImage::of(m_model.displayedImage().get());
        m_scaled = QPixmap::fromImage(image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::FastTransformation));
    }
    return m_scaled;
}

void PetArt::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect area = rect().adjusted(padding, padding, -padding, -padding).translated(0, m_offset);
    const QImage image = QtImage::of(m_model.displayedImage().get());
    if (area.isEmpty()) return;
    if (image.isNull()) {
        const int side = std::min(area.width(), area.height());
        paintSymbol(painter, area, QStringLiteral("photo.badge.plus"), toQColor(PetColors().missing), side);
        return;
    }
    // Scaled to the device's own pixels: each pixel of the picture becomes whole ones of the screen.
    const double ratio = devicePixelRatioF();
    const QSize pixels = image.size().scaled((QSizeF(area.size()) * ratio).toSize(), Qt::KeepAspectRatio);
    const QSizeF size = QSizeF(pixels) / ratio;
    const QRectF place(area.center().x() + 0.5 - size.width() / 2,
                       area.center().y() + 0.5 - size.height() / 2, size.width(), size.height());
    painter.drawPixmap(snapped(painter, place), scaledTo(pixels), QRectF(QPointF(), QSizeF(pixels)));
}

}  // namespace orvo
