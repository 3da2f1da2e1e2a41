#include "terminal/ui/TerminalPane.h"

#include "appearance/Theme.h"
#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/StatusPill.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "platform/observe.h"
#include "terminal/TerminalSession.h"
#include "terminal/ui/ConsentBar.h"
#include "terminal/ui/FindBar.h"
#include "terminal/ui/TerminalView.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <functional>

namespace orvo {
namespace {

constexpr int radius = 12;
constexpr int frameWidth = 1;
constexpr int headerHeight = 32;
constexpr int headerPadding = 12;
constexpr int iconSize = 16;
constexpr int gap = 8;

/// As wide as fits beside the terminal: at scales like 150 % a rounded-up line would lie half under it.
void strokeFrame(QPainter& painter, const QRectF& frame, const QColor& color) {
    const double scale = painter.device()->devicePixelRatioF();
    strokeRounded(painter, frame, radius, color, std::floor(frameWidth * scale) / scale);
}

/// Lies over a lower corner of the terminal, which is square, and paints what is outside of the frame, and
/// the frame.
class PaneCorner : public QWidget {
public:
    PaneCorner(QWidget* pane, std::function<QColor()> frameColor)
        : QWidget(pane), m_frameColor(std::move(frameColor)) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setFixedSize(radius, radius);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(-pos());
        const QRectF frame = parentWidget()->rect();
        QPainterPath inside;
        inside.addRoundedRect(frame, radius, radius);
        QPainterPath outside;
        outside.addRect(geometry());
        painter.fillPath(outside.subtracted(inside), toQColor(rolesOf(this).bg));
        strokeFrame(painter, frame, m_frameColor());
    }

private:
    std::function<QColor()> m_frameColor;
};

}  // namespace

TerminalPane::TerminalPane(TerminalSession& session, Theme& theme, QWidget* parent)
    : QWidget(parent),
      m_session(&session),
      m_name(new ElidedLabel(QString(), TypeRole::Badge)),
      m_state(new StatusPill(QString())),
      m_menuButton(new OrvoButton(tr("Session menu"), QStringLiteral("ellipsis"), OrvoButton::Kind::Icon,
                                  OrvoButton::Size::Small)),
      m_view(new TerminalView(theme)),
      m_leftCorner(new PaneCorner(this, [this] { return frameColor(); })),
      m_rightCorner(new PaneCorner(this, [this] { return frameColor(); })) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(frameWidth, frameWidth, frameWidth, frameWidth);
    column->setSpacing(0);
    column->addWidget(makeHeader());
    column->addWidget(m_view, 1);
    m_leftCorner->raise();
    m_rightCorner->raise();

    m_view->setSession(&session);
    setFocusProxy(m_view);
    m_find = new FindBar(*m_view, this);
    m_consent = new ConsentBar(this);
    connect(m_view, &TerminalView::findRequested, m_find, &FindBar::open);
    connect(m_view, &TerminalView::linkOpened, this, &TerminalPane::linkOpened);
    connect(m_view, &TerminalView::filesDropped, this, &TerminalPane::filesDropped);
    const auto answer = [this](TerminalSession::ClipboardAccess access) {
        if (m_session) m_session->setClipboardAccess(access);
        m_view->setFocus(Qt::OtherFocusReason);
    };
    connect(m_consent, &ConsentBar::allowed, this,
            [answer] { answer(TerminalSession::ClipboardAccess::Allowed); });
    connect(m_consent, &ConsentBar::refused, this,
            [answer] { answer(TerminalSession::ClipboardAccess::Refused); });
    observe(session, {&TerminalSession::clipboardTextChanged}, this, [this] { refreshConsent(); });
    connect(m_view, &TerminalView::focusChanged, this, [this] {
        update();
        if (m_view->hasFocus()) Q_EMIT activated();
    });
    observe(session, {&TerminalSession::runningChanged, &TerminalSession::exitCodeChanged}, this,
            [this] { refreshState(); });
}

TerminalPane::~TerminalPane() {
    // The base class would give up the focus, its terminal's, when the pane that is told is no more than a
    // widget.
    clearFocus();
}

TerminalSession* TerminalPane::session() const {
    return m_session;
}

QWidget* TerminalPane::makeHeader() {
    auto* header = new QWidget;
    header->setFixedHeight(headerHeight);
    auto* row = new QHBoxLayout(header);
    // The symbol and the line below are painted by the pane; the button's own padding hangs into the margin.
    row->setContentsMargins(headerPadding + iconSize + gap, 0, 6, 0);
    row->setSpacing(gap);
    QFont font = m_name->font();
    font.setWeight(QFont::DemiBold);
    m_name->setFont(font);
    row->addWidget(m_name, 1);
    row->addWidget(m_state);
    m_menuButton->setMenu(makeMenu());
    // Every pane has one; the description tells them apart.
    m_menuButton->setAccessibleDescription(m_session->title());
    row->addWidget(m_menuButton);
    return header;
}

QMenu* TerminalPane::makeMenu() {
    auto* menu = new QMenu(this);
    menu->addAction(tr("Export output"), this, &TerminalPane::exportRequested);
    // All of it, whatever is selected.
    menu->addAction(tr("Copy output"), m_view, &TerminalView::copyAll);
    m_stop = menu->addAction(tr("Stop session"), this, [this] {
        if (m_session) m_session->stop();
    });
    menu->addAction(tr("Close pane"), this, &TerminalPane::closeRequested);
    return menu;
}

void TerminalPane::setConnectorName(const QString& name) {
    m_name->setText(name);
    setAccessibleName(name);
}

void TerminalPane::setActive(bool active) {
    if (!assign(m_active, active)) return;
    refreshInFront();
    update();
}

void TerminalPane::refreshState() {
    if (!m_session) return;
    const bool running = m_session->running();
    const int exitCode = m_session->exitCode().value_or(0);
    if (running) {
        m_state->setStatus(tr("Running"), Ink::Accent);
    } else {
        m_state->setStatus(tr("Exit %1").arg(exitCode), exitCode == 0 ? Ink::Muted : Ink::Danger);
    }
    m_stop->setVisible(running);
}

/// What the program wrote goes to the clipboard as soon as the person lets it.
void TerminalPane::refreshConsent() {
    const bool asks = m_session && m_session->clipboardText().has_value() &&
                      m_session->clipboardAccess() == TerminalSession::ClipboardAccess::Unknown;
    m_consent->setVisible(asks);
    if (asks) m_consent->raise();
    if (!m_session || m_session->clipboardAccess() != TerminalSession::ClipboardAccess::Allowed) return;
    if (const auto text = m_session->takeClipboardText()) QGuiApplication::clipboard()->setText(*text);
}

/// The active pane of an active window is what the person looks at.
void TerminalPane::refreshInFront() {
    if (m_session) m_session->setInFront(m_active && isVisible() && window()->isActiveWindow());
}

void TerminalPane::showEvent(QShowEvent*) {
    refreshInFront();
}

void TerminalPane::hideEvent(QHideEvent*) {
    refreshInFront();
}

void TerminalPane::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange) refreshInFront();
    QWidget::changeEvent(event);
}

void TerminalPane::placeBars() {
    constexpr int inset = 8;
    const int top = headerHeight + frameWidth + inset;
    m_find->move(std::max(inset, width() - m_find->width() - inset - frameWidth), top);
    m_consent->setGeometry(inset, top, std::max(0, width() - 2 * inset), m_consent->height());
}

QColor TerminalPane::frameColor() const {
    const Roles& roles = rolesOf(this);
    if (m_view->hasFocus()) return toQColor(roles.accent);
    return m_active ? toQColor(roles.activePane) : toQColor(roles.border);
}

void TerminalPane::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const Roles& roles = rolesOf(this);
    fillRounded(painter, rect(), radius, toQColor(roles.surface));
    painter.fillRect(frameWidth, headerHeight, width() - 2 * frameWidth, 1, toQColor(roles.border));
    paintSymbol(painter, QRectF(frameWidth + headerPadding, frameWidth, iconSize, headerHeight - 1),
                QStringLiteral("terminal"), toQColor(roles.accent), iconSize);
    strokeFrame(painter, rect(), frameColor());
}

void TerminalPane::resizeEvent(QResizeEvent*) {
    m_leftCorner->move(0, height() - radius);
    m_rightCorner->move(width() - radius, height() - radius);
    placeBars();
}

void TerminalPane::mousePressEvent(QMouseEvent* event) {
    m_view->setFocus(Qt::MouseFocusReason);
    event->accept();
}

}  // namespace orvo
