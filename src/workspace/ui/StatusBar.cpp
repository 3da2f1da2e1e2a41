#include "workspace/ui/StatusBar.h"

#include "appearance/controls/Divider.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/layouts.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

#include <QPainter>

namespace orvo {
namespace {

constexpr int barHeight = 28;
constexpr int pageMargin = 24;
constexpr int dotSize = 6;

TextLabel* caption(const QString& text) {
    return new TextLabel(text, TypeRole::Caption, Ink::Muted);
}

}  // namespace

StatusBar::StatusBar(Workspace& workspace, QWidget* parent)
    : QWidget(parent), m_workspace(workspace), m_readyCount(caption(QString())) {
    setFixedHeight(barHeight);
    auto* const line = new Divider(Qt::Vertical);
    line->setFixedHeight(12);
    auto* const row = rowIn(this, 12, QMargins(pageMargin + dotSize + 8, 1, pageMargin, 0));
    row->addWidget(caption(tr("Local workspace")));
    row->addWidget(line);
    row->addWidget(m_readyCount);
    row->addStretch();
    row->addWidget(caption(tr("⌘O  Open project")));
    row->addSpacing(20);
    row->addWidget(caption(tr("⌘N  New terminal")));

    observe(m_workspace.assistants(), {&Assistants::availableChanged, &Assistants::providersChanged}, this,
            [this] { refreshReadyCount(); });
}

void StatusBar::refreshReadyCount() {
    m_readyCount->setText(tr("%1 assistants detected").arg(m_workspace.assistants().readyCount()));
}

void StatusBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const Roles& roles = rolesOf(this);
    painter.fillRect(QRect(0, 0, width(), 1), toQColor(roles.border));
    fillRounded(painter, QRectF(pageMargin, (height() + 1 - dotSize) / 2.0, dotSize, dotSize), dotSize / 2.0,
                toQColor(roles.accent));
}

}  // namespace orvo
