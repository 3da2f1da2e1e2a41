#include "files/ui/CodeSearchBar.h"

#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/TextField.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/layouts.h"
#include "files/ui/CodeEditor.h"

#include <QKeyEvent>
#include <QLocale>

namespace orvo {
namespace {

constexpr int fieldWidth = 280;

}  // namespace

CodeSearchBar::CodeSearchBar(CodeEditor& editor, QWidget* parent) : QWidget(parent), m_editor(editor) {
    auto* const row = rowIn(this, 4, QMargins(12, 6, 8, 6));
    m_text = new TextField(tr("Find in file…"));
    m_text->setAccessibleName(m_text->placeholderText());
    m_text->setIcon(QStringLiteral("magnifyingglass"));
    m_text->setMaximumWidth(fieldWidth);
    row->addWidget(m_text, 1);
    const auto addButton = [&](const QString& title, const char* icon, void (CodeSearchBar::*action)()) {
        auto* const button =
            new OrvoButton(title, QLatin1String(icon), OrvoButton::Kind::Icon, OrvoButton::Size::Small);
        connect(button, &OrvoButton::clicked, this, action);
        row->addWidget(button);
    };
    addButton(tr("Previous match"), "chevron.up", &CodeSearchBar::findPrevious);
    addButton(tr("Next match"), "chevron.down", &CodeSearchBar::findNext);
    m_count = new TextLabel(QString(), TypeRole::Caption, Ink::Muted);
    m_count->setContentsMargins(4, 0, 0, 0);
    row->addWidget(m_count);
    row->addStretch(1);
    addButton(tr("Close search"), "xmark", &CodeSearchBar::close);

    connect(m_text, &TextField::textEdited, this, &CodeSearchBar::findTyped);
    connect(&m_editor, &CodeEditor::textShown, this, &CodeSearchBar::refreshCount);
    connect(&m_editor, &QPlainTextEdit::selectionChanged, this, &CodeSearchBar::refreshCount);
    hide();
}

void CodeSearchBar::open() {
    const QString selected = m_editor.textCursor().selectedText();
    if (!selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator)) m_text->setText(selected);
    show();
    m_text->setFocus(Qt::ShortcutFocusReason);
    m_text->selectAll();
    refreshCount();
}

void CodeSearchBar::close() {
    hide();
    m_editor.setSearched(QString());
    m_editor.setFocus(Qt::OtherFocusReason);
}

void CodeSearchBar::findNext() {
    m_editor.find(m_text->text(), CodeEditor::Search::Next);
}

void CodeSearchBar::findPrevious() {
    m_editor.find(m_text->text(), CodeEditor::Search::Previous);
}

// While the text grows, the place found so far stays as long as it fits.
void CodeSearchBar::findTyped() {
    m_editor.find(m_text->text(), CodeEditor::Search::Here);
    refreshCount();
}

void CodeSearchBar::refreshCount() {
    if (isHidden()) return;
    m_editor.setSearched(m_text->text());
    const CodeEditor::Matches matches = m_editor.matches(m_text->text());
    const QLocale locale;
    if (m_text->text().isEmpty())
        m_count->setText(QString());
    else if (matches.count == 0)
        m_count->setText(tr("No matches"));
    else if (matches.current == 0)
        m_count->setText(tr("%1 matches").arg(locale.toString(matches.count)));
    else
        m_count->setText(
            tr("%1 of %2").arg(locale.toString(matches.current), locale.toString(matches.count)));
    m_text->setInvalid(matches.count == 0 && !m_text->text().isEmpty());
}

void CodeSearchBar::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            event->modifiers().testFlag(Qt::ShiftModifier) ? findPrevious() : findNext();
            return;
        case Qt::Key_Escape:
            close();
            return;
        default:
            QWidget::keyPressEvent(event);
    }
}

}  // namespace orvo
