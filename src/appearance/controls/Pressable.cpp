#include "appearance/controls/Pressable.h"

#include <QFocusEvent>
#include <QKeyEvent>

namespace orvo {

Pressable::Pressable(const QString& title, QWidget* parent) : QAbstractButton(parent), m_hover(this) {
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setTitle(title);
}

void Pressable::setTitle(const QString& title) {
    if (m_title == title && text().isEmpty() == title.isEmpty()) return;
    m_title = title;
    QString escaped = title;
    setText(escaped.replace(u'&', QStringLiteral("&&")));
    updateGeometry();
}

void Pressable::takeVisibleFocus() {
    setFocus(Qt::TabFocusReason);
    m_focusVisible = true;  // also in a window that is not active yet
    update();
}

bool Pressable::event(QEvent* event) {
    if (event->type() == QEvent::HoverEnter && isEnabled()) m_hover.to(1);
    if (event->type() == QEvent::HoverLeave) m_hover.to(0);
    return QAbstractButton::event(event);
}

void Pressable::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange) m_hover.jumpTo(isEnabled() && underMouse() ? 1 : 0);
    QAbstractButton::changeEvent(event);
}

void Pressable::focusInEvent(QFocusEvent* event) {
    switch (event->reason()) {
        case Qt::TabFocusReason:
        case Qt::BacktabFocusReason:
        case Qt::ShortcutFocusReason:
            m_focusVisible = true;
            break;
        case Qt::ActiveWindowFocusReason:
        case Qt::PopupFocusReason:
            break;  // the focus comes back as it went
        default:
            m_focusVisible = false;
    }
    QAbstractButton::focusInEvent(event);
}

void Pressable::focusOutEvent(QFocusEvent* event) {
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason) {
        m_focusVisible = false;
    }
    QAbstractButton::focusOutEvent(event);
}

void Pressable::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && !isCheckable() && !event->isAutoRepeat()) {
        click();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

void Pressable::mousePressEvent(QMouseEvent* event) {
    m_focusVisible = false;
    QAbstractButton::mousePressEvent(event);
}

}  // namespace orvo
