#include "companion/ui/CompanionPanel.h"

#include "appearance/controls/Card.h"
#include "appearance/controls/painting.h"
#include "platform/desktop/panelHints.h"
#include "platform/observe.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWindow>

namespace orvo {

CompanionPanel::CompanionPanel(const QString& title, QWidget* content, Shadow shadow, Focus focus)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::NoDropShadowWindowHint |
                           (focus == Focus::Refuses ? Qt::WindowDoesNotAcceptFocus : Qt::WindowFlags())),
      m_content(content),
      m_shadow(shadow) {
    setWindowTitle(title);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_QuitOnClose, false);
    m_content->setParent(this);
}

// The shadow lies around the content, in the window: nobody else draws one for a window without frame.
int CompanionPanel::margin() const {
    return m_shadow == Shadow::Soft && m_blended ? shadowReach : 0;
}

QRect CompanionPanel::contentRect() const {
    return rect().adjusted(margin(), margin(), -margin(), -margin());
}

void CompanionPanel::setContentSize(const QSize& size) {
    m_size = size;
    adoptGeometry();
}

void CompanionPanel::placeContent(const QPoint& corner) {
    m_corner = corner;
    adoptGeometry();
}

void CompanionPanel::adoptGeometry() {
    setGeometry(QRect(m_corner, m_size).adjusted(-margin(), -margin(), margin(), margin()));
    m_content->setGeometry(contentRect());
}

void CompanionPanel::setOutline(std::function<QRegion()> outline) {
    m_outline = std::move(outline);
}

void CompanionPanel::refreshBlending() {
    if (assign(m_blended, isComposited())) adoptGeometry();
    if (m_blended) {
        clearMask();
    } else if (m_outline) {
        setMask(m_outline());
    } else {
        QPainterPath shape;
        shape.addRoundedRect(contentRect(), Card::radius, Card::radius);
        setMask(QRegion(shape.toFillPolygon().toPolygon()));
    }
}

void CompanionPanel::showInFront() {
    setAttribute(Qt::WA_ShowWithoutActivating, false);
    show();
    raise();
    if (!(windowFlags() & Qt::WindowDoesNotAcceptFocus)) activateWindow();
}

void CompanionPanel::showQuietly() {
    setAttribute(Qt::WA_ShowWithoutActivating);
    show();
    raise();
}

void CompanionPanel::showEvent(QShowEvent* event) {
    refreshBlending();
    stayOnAllDesktops(*windowHandle());
    QWidget::showEvent(event);
}

void CompanionPanel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    m_content->setGeometry(contentRect());
    refreshBlending();
}

void CompanionPanel::paintEvent(QPaintEvent*) {
    if (m_shadow == Shadow::None || !m_blended) return;
    QPainter painter(this);
    paintShadow(painter, contentRect(), Card::radius, Elevation::Panel);
}

void CompanionPanel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT closeRequested();
        return;
    }
    QWidget::keyPressEvent(event);
}

void CompanionPanel::closeEvent(QCloseEvent* event) {
    event->ignore();
    Q_EMIT closeRequested();
}

}  // namespace orvo
