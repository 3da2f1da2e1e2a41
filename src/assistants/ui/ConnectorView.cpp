#include "assistants/ui/ConnectorView.h"

#include "appearance/Theme.h"
#include "appearance/controls/InfoCard.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/OrvoMark.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/TextField.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/layouts.h"
#include "platform/Launcher.h"
#include "workspace/Workspace.h"

#include <QUuid>

namespace orvo {
namespace {

constexpr double codePixels = 13;
constexpr int labelGap = 6;
constexpr int fieldGap = 16;
constexpr int hintGap = 6;

/// A field below its label; typing calls nothing yet.
TextField* addField(QVBoxLayout& column, const QString& label, const QString& placeholder,
                    const QString& text) {
    column.addWidget(new TextLabel(label, TypeRole::SmallControl));
    column.addSpacing(labelGap);
    auto* const field = new TextField(placeholder);
    field->setAccessibleName(label);
    field->setText(text);
    field->setCursorPosition(0);
    column.addWidget(field);
    return field;
}

bool isZai(const std::optional<Provider>& provider) {
    return provider && provider->id == u"zai";
}

}  // namespace

ConnectorView::ConnectorView(const std::optional<Provider>& provider, Workspace& workspace, Theme& theme,
                             Launcher& launcher, QWidget* window)
    : Sheet(window), m_provider(provider), m_workspace(workspace), m_theme(theme), m_launcher(launcher) {
    setAccessibleName(title());
    setContent(makeHeader(), makeBody(), makeFooter());
    for (const TextField* const field : {m_name, m_executable, m_template})
        connect(field, &TextField::textChanged, this, [this] { refreshSave(); });
    connect(m_template, &TextField::textChanged, this, [this] { refreshCommand(); });
    connect(m_documentation, &TextField::textChanged, this, [this] { refreshLink(); });
    for (const TextField* const field : {m_name, m_executable, m_template, m_documentation})
        connect(field, &TextField::returnPressed, this, [this] { save(); });
    refreshSave();
    refreshCommand();
    refreshLink();
}

void ConnectorView::present() {
    open(m_name);
}

QString ConnectorView::title() const {
    return m_provider ? tr("Configure %1").arg(m_provider->shownName()) : tr("Add an assistant");
}

QWidget* ConnectorView::makeHeader() const {
    auto* const header = new QWidget;
    auto* const row = rowIn(header, 16);
    row->addWidget(new OrvoMark(32), 0, Qt::AlignTop);
    auto* const lines = columnIn(nullptr, 4);
    lines->addWidget(new Paragraph(title(), TypeRole::Section, Ink::Text));
    lines->addWidget(new Paragraph(
        tr("Connect a local CLI. Sign in inside its terminal using your provider’s normal login flow.")));
    row->addLayout(lines, 1);
    return header;
}

QWidget* ConnectorView::makeBody() {
    const Provider shown = m_provider.value_or(Provider());
    auto* const body = new QWidget;
    auto* const column = columnIn(body, 0, QMargins(0, fieldGap, 0, 20));
    m_name = addField(*column, tr("Display name"), tr("My assistant"), shown.name);
    column->addSpacing(fieldGap);
    m_executable = addField(*column, tr("Executable name or absolute path"), QStringLiteral("opencode"),
                            shown.executable);
    column->addSpacing(fieldGap);
    m_template =
        addField(*column, tr("Launch command"),
                 isZai(m_provider) ? QStringLiteral("claude --settings /path/to/zai-settings.json {prompt}")
                                   : QStringLiteral("opencode {prompt}"),
                 shown.template_);
    for (TextField* const field : {m_executable, m_template})
        field->setFont(monoFont(codePixels));
    column->addSpacing(hintGap);
    column->addWidget(new Paragraph(
        tr("Use {prompt} outside quotes where a task should be inserted. Orvo supplies the quotes. Keep "
           "secrets in your provider’s configuration, outside this command."),
        TypeRole::Caption));
    column->addSpacing(hintGap);
    m_templateError = new Paragraph(QString(), TypeRole::SmallControl, Ink::Danger);
    column->addWidget(m_templateError);
    column->addSpacing(fieldGap - hintGap);
    if (isZai(m_provider)) {
        column->addWidget(new InfoCard(
            QStringLiteral("doc.badge.gearshape"), tr("Keep a separate Z.ai profile"),
            tr("Z.ai uses a compatible client such as Claude Code. Create a separate provider settings file "
               "following Z.ai’s guide, then point this command to it with --settings. Orvo will not change "
               "your normal Claude account.")));
        column->addSpacing(fieldGap);
    }
    m_documentation = addField(*column, tr("Documentation URL (optional)"), QStringLiteral("https://…"),
                               shown.documentation);
    m_link = new OrvoButton(tr("Provider documentation ↗"), QString(), OrvoButton::Kind::Link,
                            OrvoButton::Size::Small);
    connect(m_link, &OrvoButton::clicked, this, [this] { openDocumentation(); });
    column->addWidget(m_link, 0, Qt::AlignLeft);
    return body;
}

QWidget* ConnectorView::makeFooter() {
    auto* const footer = new QWidget;
    auto* const row = rowIn(footer, 8);
    row->addStretch();
    auto* const cancel = new OrvoButton(tr("Cancel"));
    connect(cancel, &OrvoButton::clicked, this, &Sheet::dismiss);
    m_save = new OrvoButton(tr("Save connector"), QString(), OrvoButton::Kind::Primary);
    connect(m_save, &OrvoButton::clicked, this, [this] { save(); });
    row->addWidget(cancel);
    row->addWidget(m_save);
    return footer;
}

void ConnectorView::refreshCommand() {
    const std::optional<QString> error = candidate().templateError();
    m_template->setInvalid(error.has_value());
    m_templateError->setText(error.value_or(QString()));
    m_templateError->setVisible(error.has_value());
}

// Looser than the card's link: what is typed is shown as it is, not yet checked for a host.
void ConnectorView::refreshLink() {
    const QString text = m_documentation->text();
    const bool isWeb = text.startsWith(u"https:") || text.startsWith(u"http:");
    m_link->setVisible(isWeb && QUrl(text, QUrl::StrictMode).isValid());
}

void ConnectorView::refreshSave() {
    m_save->setEnabled(!m_name->text().isEmpty() && !m_executable->text().isEmpty() &&
                       !m_template->text().isEmpty() && !candidate().templateError());
}

Provider ConnectorView::candidate() const {
    return {.id = m_provider ? m_provider->id : QStringLiteral("custom"),
            .name = m_name->text(),
            .subtitle = {},
            .icon = QStringLiteral("terminal"),
            .colorHex = QStringLiteral("00E5D0"),
            .executable = m_executable->text(),
            .template_ = m_template->text(),
            .documentation = m_documentation->text()};
}

Provider ConnectorView::record() const {
    Provider provider = candidate();
    if (m_provider) {
        provider.subtitle = m_provider->subtitle;
        provider.icon = m_provider->icon;
        provider.colorHex = m_provider->colorHex;
    } else {
        provider.id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
        provider.subtitle = tr("Custom · local CLI connector");
        provider.icon = QStringLiteral("puzzlepiece.extension");
        provider.colorHex = m_theme.accentHex();
    }
    return provider;
}

void ConnectorView::save() {
    if (!m_save->isEnabled()) return;
    m_workspace.saveProvider(record());
    dismiss();
}

void ConnectorView::openDocumentation() {
    const Result<void> opened = m_launcher.openAddress(QUrl(m_documentation->text(), QUrl::StrictMode));
    if (!opened) m_workspace.notify(opened.error().message);
}

}  // namespace orvo
