#include "appearance/controls/Sheet.h"

#include "appearance/controls/Card.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/Pressable.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/readingOrder.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace orvo {
namespace {

constexpr int edge = 24;  // the least distance to the window's edges
constexpr int rise = 12;

}  // namespace

/// Asks for the height of its content, and scrolls it when it gets less.
class Sheet::BodyScroll final : public QScrollArea {
public:
    explicit BodyScroll(QWidget* content) {
        setFrameShape(QFrame::NoFrame);
        setWidgetResizable(true);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setFocusPolicy(Qt::NoFocus);
        setWidget(content);
        content->setAutoFillBackground(false);
        viewport()->setAutoFillBackground(false);
        QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
    }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override {
        return widget()->hasHeightForWidth() ? widget()->heightForWidth(width)
                                             : widget()->sizeHint().height();
    }
    QSize sizeHint() const override { return widget()->sizeHint(); }
    QSize minimumSizeHint() const override { return {widget()->minimumSizeHint().width(), 64}; }
};

Sheet::Sheet(QWidget* widget, int panelWidth)
    : QWidget(widget->window()),
      m_panel(new Card(this)),
      m_panelWidth(panelWidth),
      m_presence(this, 180, [this] {
          placePanel();
          update();
      }) {
    hide();
    setFocusPolicy(Qt::StrongFocus);
    auto* column = new QVBoxLayout(m_panel);
    column->setSpacing(0);
    setPadding(24);
    parentWidget()->installEventFilter(this);
}

Sheet::~Sheet() {
    if (m_open) qApp->removeEventFilter(this);
}

void Sheet::setPadding(int padding) {
    m_padding = padding;
    m_panel->layout()->setContentsMargins(padding, padding, padding, padding);
}

void Sheet::setContent(QWidget* header, QWidget* body, QWidget* footer) {
    auto* column = static_cast<QVBoxLayout*>(m_panel->layout());
    if (header) column->addWidget(header);
    if (body) {
        m_body = new BodyScroll(body);
        column->addWidget(m_body, 1);
    }
    if (footer) column->addWidget(footer);
}

void Sheet::open(QWidget* first) {
    if (m_open) return;
    m_open = true;
    m_opener = window()->focusWidget();
    qApp->installEventFilter(this);
    setGeometry(parentWidget()->rect());
    m_presence.jumpTo(0);
    placePanel();
    show();
    raise();
    m_presence.to(1);
    if (auto* control = qobject_cast<Pressable*>(first)) {
        control->takeVisibleFocus();
    } else {
        (first ? first : this)->setFocus(Qt::TabFocusReason);
    }
}

void Sheet::dismiss() {
    if (!m_open) return;
    m_open = false;
    qApp->removeEventFilter(this);
    if (m_opener) m_opener->setFocus(Qt::PopupFocusReason);
    m_presence.to(0, [this] {
        hide();
        Q_EMIT dismissed();
    });
}

bool Sheet::isWithin(const QObject* object) const {
    for (const QObject* up = object; up; up = up->parent()) {
        if (up == this) return true;
    }
    return false;
}

bool Sheet::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
        placePanel();
    }
    // Without its window nothing can be answered; closing it is a way out, first of the sheet.
    if (watched == parentWidget() && m_open &&
        (event->type() == QEvent::Close || event->type() == QEvent::Hide)) {
        const bool closing = event->type() == QEvent::Close;
        if (closing) event->ignore();
        dismiss();
        return closing;
    }
    // Shortcuts of the window behind rest while the sheet is open.
    const bool ofThisWindow = [&] {
        if (event->type() != QEvent::Shortcut) return false;
        return m_open && !isWithin(watched);
    }();
    return ofThisWindow || QWidget::eventFilter(watched, event);
}

void Sheet::placePanel() {
    const int width = std::min(m_panelWidth, this->width() - 2 * edge);
    QLayout* layout = m_panel->layout();
    layout->activate();
    const int wanted =
        layout->hasHeightForWidth() ? layout->heightForWidth(width) : layout->sizeHint().height();
    const int height = std::min(wanted, this->height() - 2 * edge);
    const int drop = static_cast<int>(rise * (1 - m_presence.value()));
    m_panel->setGeometry((this->width() - width) / 2, (this->height() - height) / 2 + drop, width, height);
}

bool Sheet::focusNextPrevChild(bool next) {
    focusNeighbour(*m_panel, next);
    return true;
}

void Sheet::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        dismiss();
        return;
    }
    // Nothing typed here may reach the window behind.
    event->accept();
}

void Sheet::mousePressEvent(QMouseEvent* event) {
    event->accept();
}

void Sheet::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    painter.setOpacity(m_presence.value());
    painter.fillRect(rect(), toQColor(roles.dim));
    paintShadow(painter, m_panel->geometry(), Card::radius, Elevation::Panel);
}

}  // namespace orvo
