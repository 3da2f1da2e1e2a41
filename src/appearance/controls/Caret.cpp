#include "appearance/controls/Caret.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"

#include <QAbstractScrollArea>
#include <QEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QStyleHints>
#include <QTimerEvent>

namespace orvo {
namespace {

constexpr double caretWidth = 1.5;

}  // namespace

Caret::Caret(QWidget* widget) : m_widget(widget) {
    widget->installEventFilter(this);
}

void Caret::restart() {
    if (m_timer) killTimer(m_timer);
    m_timer = 0;
    setLit(m_widget->hasFocus());
    const int beat = QGuiApplication::styleHints()->cursorFlashTime() / 2;
    if (m_lit && beat > 0) m_timer = startTimer(beat);
}

void Caret::paint(QPainter& painter, const QRect& cursor) const {
    const QRectF line(QRectF(cursor).center().x() - caretWidth / 2, cursor.top(), caretWidth,
                      cursor.height());
    painter.fillRect(line, toQColor(rolesOf(m_widget).accent));
}

bool Caret::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        // After the widget itself has taken the event in.
        QMetaObject::invokeMethod(this, [this] { restart(); }, Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

void Caret::timerEvent(QTimerEvent*) {
    setLit(!m_lit);
}

void Caret::setLit(bool lit) {
    if (lit == m_lit) return;
    m_lit = lit;
    if (auto* area = qobject_cast<QAbstractScrollArea*>(m_widget)) {
        area->viewport()->update();
    } else {
        m_widget->update();
    }
}

}  // namespace orvo
