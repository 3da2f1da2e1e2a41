#include "files/ui/CodeLineBar.h"

#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/TextField.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/layouts.h"
#include "files/ui/CodeEditor.h"

#include <QIntValidator>
#include <QKeyEvent>

namespace orvo {
namespace {

constexpr int fieldWidth = 160;

}  // namespace

CodeLineBar::CodeLineBar(CodeEditor& editor, QWidget* parent) : QWidget(parent), m_editor(editor) {
    auto* const row = rowIn(this, 8, QMargins(12, 6, 8, 6));
    m_number = new TextField(tr("Go to line…"));
    m_number->setAccessibleName(m_number->placeholderText());
    m_number->setMaximumWidth(fieldWidth);
    // As many digits as a line number may have; 0 goes to the first line.
    m_number->setValidator(new QIntValidator(0, 99'999'999, this));
    row->addWidget(m_number, 1);
    m_last = new TextLabel(QString(), TypeRole::Caption, Ink::Muted);
    row->addWidget(m_last);
    row->addStretch(1);
    auto* const closing =
        new OrvoButton(tr("Close"), QStringLiteral("xmark"), OrvoButton::Kind::Icon, OrvoButton::Size::Small);
    connect(closing, &OrvoButton::clicked, this, &CodeLineBar::close);
    row->addWidget(closing);
    hide();
}

void CodeLineBar::open() {
    m_number->setText(QString::number(m_editor.currentLine()));
    m_last->setText(tr("of %1").arg(m_editor.lastLine()));
    show();
    m_number->setFocus(Qt::ShortcutFocusReason);
    m_number->selectAll();
}

void CodeLineBar::close() {
    hide();
    m_editor.setFocus(Qt::OtherFocusReason);
}

void CodeLineBar::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (!m_number->text().isEmpty()) m_editor.goToLine(m_number->text().toInt());
            close();
            return;
        case Qt::Key_Escape:
            close();
            return;
        default:
            QWidget::keyPressEvent(event);
    }
}

}  // namespace orvo
