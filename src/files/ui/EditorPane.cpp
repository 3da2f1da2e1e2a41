#include "files/ui/EditorPane.h"

#include "appearance/Theme.h"
#include "appearance/controls/Divider.h"
#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/EmptyState.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/Symbol.h"
#include "appearance/controls/layouts.h"
#include "files/ui/CodeEditor.h"
#include "files/ui/CodeLineBar.h"
#include "files/ui/CodeSearchBar.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

#include <QPainter>
#include <QShortcut>

namespace orvo {
namespace {

constexpr int headerHeight = 48;

/// The mark of changes that are not saved.
class ModifiedDot final : public QWidget {
public:
    ModifiedDot() {
        setFixedSize(6, 6);
        setAccessibleName(EditorPane::tr("Unsaved changes"));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        fillRounded(painter, rect(), 3, toQColor(rolesOf(this).accent));
    }
};

}  // namespace

EditorPane::EditorPane(Workspace& workspace, Theme& theme, QWidget* parent)
    : QStackedWidget(parent), m_workspace(workspace), m_theme(theme), m_card(new Card) {
    m_empty = new EmptyState(QStringLiteral("curlybraces"), tr("Make something here."),
                             tr("Choose a text file from your project, or create a new one."));
    addWidget(m_empty);
    auto* const column = columnIn(m_card, 0, QMargins(1, 1, 1, 1));
    column->addWidget(makeHeader());
    m_code = new CodeEditor(tr("Code editor"));
    m_code->setBottomRadius(Card::radius - 1);
    m_find = new CodeSearchBar(*m_code);
    m_line = new CodeLineBar(*m_code);
    column->addWidget(m_find);
    column->addWidget(m_line);
    column->addWidget(new Divider);
    column->addWidget(m_code, 1);
    addWidget(m_card);
    addShortcuts();

    ProjectFiles& files = workspace.files();
    connect(m_code, &CodeEditor::textEdited, this,
            [this] { m_workspace.files().setEditorText(m_code->text()); });
    connect(m_code, &CodeEditor::focusChanged, this,
            [this](bool focused) { m_card->setFrame(focused ? CardFrame::Active : CardFrame::Plain); });
    observe(files, {&ProjectFiles::selectedFileChanged}, this, [this] { refreshFile(); });
    observe(files, {&ProjectFiles::editorTextChanged}, this, [this] { refreshText(); });
    observe(files,
            {&ProjectFiles::selectedFileChanged, &ProjectFiles::editorTextChanged,
             &ProjectFiles::savedTextChanged},
            this, [this] { refreshHeader(); });
    observe(files, {&ProjectFiles::onDiskChanged, &ProjectFiles::selectedFileChanged}, this,
            [this] { refreshNote(); });
    connect(m_code, &CodeEditor::textShown, this, &EditorPane::refreshNote);
    observe(theme, {&Theme::fontSizeChanged, &Theme::backgroundHexChanged}, this, [this] { refreshLooks(); });
}

QWidget* EditorPane::makeHeader() {
    auto* const header = new QWidget;
    header->setFixedHeight(headerHeight);
    auto* const row = rowIn(header, 8, QMargins(16, 0, 8, 0));
    row->addWidget(new Symbol(QStringLiteral("doc.text"), 16, Ink::Muted));
    m_name = new ElidedLabel(QString(), TypeRole::Name);
    m_name->setElideMode(Qt::ElideMiddle);
    row->addWidget(m_name);
    m_modified = new ModifiedDot;
    row->addWidget(m_modified);
    m_note = new ElidedLabel(QString(), TypeRole::Caption, Ink::Muted);
    row->addWidget(wide(m_note), 1);
    m_reload = new OrvoButton(tr("Reload file"), QStringLiteral("arrow.clockwise"), OrvoButton::Kind::Plain);
    connect(m_reload, &OrvoButton::clicked, this, [this] {
        // Asks first when there are changes to lose.
        ProjectFiles& files = m_workspace.files();
        if (const std::optional<FilePath> file = files.selectedFile()) files.openFile({*file, false});
    });
    row->addWidget(m_reload);
    auto* const save = new OrvoButton(tr("Save"), QStringLiteral("square.and.arrow.down"));
    connect(save, &OrvoButton::clicked, this, [this] { m_workspace.files().saveFile(); });
    row->addWidget(save);
    auto* const run = new OrvoButton(tr("Run file"), QStringLiteral("play.fill"), OrvoButton::Kind::Primary);
    connect(run, &OrvoButton::clicked, this, [this] { m_workspace.runFile(); });
    row->addWidget(run);
    return header;
}

void EditorPane::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        auto* const shortcut = new QShortcut(keys, m_card);
        shortcut->setContext(Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, action);
    };
    add(QKeySequence::Find, [this] {
        m_line->hide();
        m_find->open();
    });
    add(QKeySequence(Qt::CTRL | Qt::Key_G), [this] {
        if (m_find->isVisible()) m_find->close();
        m_line->open();
    });
    add(QKeySequence(Qt::Key_F3), [this] { m_find->findNext(); });
    add(QKeySequence(Qt::SHIFT | Qt::Key_F3), [this] { m_find->findPrevious(); });
}

// Another file begins with a history of its own.
void EditorPane::refreshFile() {
    const ProjectFiles& files = m_workspace.files();
    m_code->open(files.editorText());
    setCurrentWidget(files.selectedFile() ? m_card : m_empty);
}

void EditorPane::refreshHeader() {
    const ProjectFiles& files = m_workspace.files();
    const std::optional<FilePath>& file = files.selectedFile();
    if (!file) return;
    m_name->setText(file->displayName().simplified());
    m_modified->setVisible(files.fileIsDirty());
}

void EditorPane::refreshNote() {
    using OnDisk = ProjectFiles::OnDisk;
    const OnDisk onDisk = m_workspace.files().onDisk();
    m_reload->setVisible(onDisk == OnDisk::Changed);
    m_note->setInk(onDisk == OnDisk::Same ? Ink::Muted : Ink::Danger);
    switch (onDisk) {
        case OnDisk::Same:
            m_note->setText(m_code->plainReason());
            break;
        case OnDisk::Changed:
            m_note->setText(tr("Changed on disk"));
            break;
        case OnDisk::Unreadable:
            m_note->setText(tr("Removed, or no longer readable as text"));
            break;
    }
}

void EditorPane::refreshText() {
    m_code->setText(m_workspace.files().editorText());
}

void EditorPane::refreshLooks() {
    m_code->setFontSize(m_theme.fontSize() + 1);
    m_code->setBackground(toQColor(m_theme.bg()));
}

}  // namespace orvo
