#include "appearance/controls/InfoCard.h"

#include "appearance/controls/IconTile.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/TextLabel.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace orvo {

InfoCard::InfoCard(const QString& icon, const QString& title, const QString& text, QWidget* parent)
    : Card(parent), m_text(new Paragraph(text)), m_column(new QVBoxLayout) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(16, 16, 16, 16);
    row->setSpacing(12);
    if (!icon.isEmpty()) row->addWidget(new IconTile(icon), 0, Qt::AlignTop);
    m_column->setSpacing(4);
    m_column->addWidget(new TextLabel(title, TypeRole::Name));
    m_column->addWidget(m_text);
    m_column->addStretch();
    row->addLayout(m_column, 1);
}

void InfoCard::setText(const QString& text) {
    m_text->setText(text);
}

void InfoCard::addBelow(QWidget* widget) {
    const int last = m_column->count() - 1;  // the stretch stays at the end
    m_column->insertSpacing(last, 8);
    m_column->insertWidget(last + 1, widget, 0, Qt::AlignLeft);
}

}  // namespace orvo
