#include "workspace/ui/ConnectorSheet.h"

#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/OrvoMark.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/layouts.h"
#include "platform/Launcher.h"
#include "workspace/Workspace.h"

namespace orvo {

ConnectorSheet::ConnectorSheet(const std::optional<Provider>& provider, Workspace& workspace,
                               Launcher& launcher, QWidget* window)
    : Sheet(window), m_workspace(workspace), m_launcher(launcher) {
    setContent(makeHeader(provider), makeBody(provider), makeFooter());
}

void ConnectorSheet::present() {
    open(m_cancel);
}

QWidget* ConnectorSheet::makeHeader(const std::optional<Provider>& provider) const {
    auto* const header = new QWidget;
    auto* const row = rowIn(header, 16);
    row->addWidget(new OrvoMark(32), 0, Qt::AlignTop);
    auto* const lines = columnIn(nullptr, 4);
    lines->addWidget(new Paragraph(provider ? tr("Configure %1").arg(provider->name) : tr("Add an assistant"),
                                   TypeRole::Section, Ink::Text));
    lines->addWidget(new Paragraph(
        tr("Connect a local CLI. Sign in inside its terminal using your provider’s normal login flow.")));
    row->addLayout(lines, 1);
    return header;
}

QWidget* ConnectorSheet::makeBody(const std::optional<Provider>& provider) {
    auto* const body = new QWidget;
    auto* const column = columnIn(body, 12, QMargins(0, 16, 0, 20));
    column->addWidget(new Paragraph(explanationFor(provider), TypeRole::Body, Ink::Text));
    const auto address = provider ? provider->documentationURL() : std::nullopt;
    if (address) {
        auto* const link = new OrvoButton(tr("Provider documentation ↗"), QStringLiteral("book"),
                                          OrvoButton::Kind::Outlined, OrvoButton::Size::Small);
        connect(link, &OrvoButton::clicked, this, [this, address] {
            const Result<void> opened = m_launcher.openAddress(*address);
            if (!opened) m_workspace.notify(opened.error().message);
        });
        column->addWidget(link, 0, Qt::AlignLeft);
    }
    return body;
}

QWidget* ConnectorSheet::makeFooter() {
    auto* const footer = new QWidget;
    auto* const row = rowIn(footer, 8);
    row->addStretch();
    m_cancel = new OrvoButton(tr("Cancel"));
    connect(m_cancel, &OrvoButton::clicked, this, &Sheet::dismiss);
    row->addWidget(m_cancel);
    return footer;
}

QString ConnectorSheet::explanationFor(const std::optional<Provider>& provider) const {
    if (!provider) return tr("Connectors of your own cannot be added in this version yet.");
    const Assistants& assistants = m_workspace.assistants();
    const auto path = assistants.available().constFind(provider->id);
    if (path == assistants.available().constEnd()) {
        return tr("The program “%1” was not found. Install %2 as its documentation describes, then refresh "
                  "the "
                  "workspace with the button at the top right.")
            .arg(provider->executable, provider->name);
    }
    if (!assistants.isReady(*provider)) {
        return tr("%1 needs a launch command of its own, which cannot be written in this version yet.")
            .arg(provider->name);
    }
    return tr("%1 is installed at %2 and ready. Its launch command cannot be changed in this version yet.")
        .arg(provider->name, path->display());
}

}  // namespace orvo
