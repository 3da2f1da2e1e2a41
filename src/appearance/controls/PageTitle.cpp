#include "appearance/controls/PageTitle.h"

#include "appearance/controls/Eyebrow.h"
#include "appearance/controls/Paragraph.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace orvo {

PageTitle::PageTitle(const QString& eyebrow, const QString& title, const QString& subtitle, QWidget* parent)
    : QWidget(parent), m_row(new QHBoxLayout(this)) {
    m_row->setContentsMargins(0, 0, 0, 0);
    m_row->setSpacing(8);
    auto* column = new QVBoxLayout;
    column->setSpacing(6);
    if (!eyebrow.isEmpty()) column->addWidget(new Eyebrow(eyebrow));
    column->addWidget(new Paragraph(title, TypeRole::Title, Ink::Text));
    auto* explanation = new Paragraph(subtitle);
    explanation->setMaximumWidth(800);
    // In a row of its own: a limit on the column would narrow, and then centre, the whole title.
    auto* line = new QHBoxLayout;
    line->addWidget(explanation, 1);
    line->addStretch();
    column->addLayout(line);
    m_row->addLayout(column, 1);
}

void PageTitle::addTrailing(QWidget* widget) {
    m_row->addWidget(widget, 0, Qt::AlignBottom);
}

}  // namespace orvo
