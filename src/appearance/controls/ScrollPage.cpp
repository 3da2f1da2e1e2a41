#include "appearance/controls/ScrollPage.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace orvo {

ScrollPage::ScrollPage(int widest, QWidget* parent) : QScrollArea(parent), m_column(nullptr) {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);

    auto* page = new QWidget;
    page->setAutoFillBackground(false);
    auto* row = new QHBoxLayout(page);
    row->setContentsMargins(margin, margin, margin, margin);
    row->setSpacing(0);
    auto* content = new QWidget;
    content->setMaximumWidth(widest);
    m_column = new QVBoxLayout(content);
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(0);
    // The column takes all the width there is; what is over its limit goes to both sides.
    row->addItem(new QSpacerItem(0, 0, QSizePolicy::Expanding, QSizePolicy::Minimum));
    row->addWidget(content, 1);
    row->addItem(new QSpacerItem(0, 0, QSizePolicy::Expanding, QSizePolicy::Minimum));
    setWidget(page);
    page->setAutoFillBackground(false);  // setWidget has turned it on
}

}  // namespace orvo
