#include "workspace/ui/HeaderBar.h"

#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/HeaderPill.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/Symbol.h"
#include "appearance/controls/layouts.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

#include <QPainter>

namespace orvo {
namespace {

constexpr int barHeight = 56;
constexpr int pageMargin = 24;

}  // namespace

HeaderBar::HeaderBar(Workspace& workspace, QWidget* parent)
    : QWidget(parent),
      m_workspace(workspace),
      m_title(new TextLabel(QString(), TypeRole::Name)),
      m_folder(new ElidedLabel(QString(), TypeRole::Body, Ink::Muted)) {
    setFixedHeight(barHeight);
    auto* const refresh = new OrvoButton(tr("Refresh installed tools and files"),
                                         QStringLiteral("arrow.clockwise"), OrvoButton::Kind::Icon);
    connect(refresh, &OrvoButton::clicked, this, [this] { m_workspace.refreshWorkspace(); });

    auto* const row = rowIn(this, 0, QMargins(pageMargin, 0, pageMargin, 1));
    row->addWidget(m_title);
    row->addSpacing(8);
    row->addWidget(new Symbol(QStringLiteral("chevron.right"), 14, Ink::Muted));
    row->addSpacing(8);
    row->addWidget(m_folder, 1);
    row->addSpacing(12);
    row->addWidget(new HeaderPill(QString(), tr("macOS native")));
    row->addSpacing(12);
    row->addWidget(refresh);

    observe(m_workspace, {&Workspace::destinationChanged}, this, [this] { refreshTitle(); });
    observe(m_workspace, {&Workspace::folderChanged}, this, [this] { refreshFolder(); });
}

void HeaderBar::refreshTitle() {
    m_title->setText(textOf(m_workspace.destination()));
}

void HeaderBar::refreshFolder() {
    m_folder->setText(m_workspace.folderName());
}

void HeaderBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(QRect(0, height() - 1, width(), 1), toQColor(rolesOf(this).border));
}

}  // namespace orvo
