#include "appearance/controls/EmptyState.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/symbols.h"

#include <QPainter>
#include <QVBoxLayout>

namespace orvo {
namespace {

class BigSymbol final : public QWidget {
public:
    explicit BigSymbol(const QString& icon) : m_icon(icon) { setFixedSize(32, 32); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        paintSymbol(painter, rect(), m_icon, toQColor(rolesOf(this).muted), 32);
    }

private:
    QString m_icon;
};

}  // namespace

EmptyState::EmptyState(const QString& icon, const QString& title, const QString& text, QWidget* parent)
    : Card(parent) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 24, 16, 24);
    column->setSpacing(0);
    column->addStretch();
    column->addWidget(new BigSymbol(icon), 0, Qt::AlignHCenter);
    column->addSpacing(12);
    column->addWidget(new TextLabel(title, TypeRole::CardTitle), 0, Qt::AlignHCenter);
    column->addSpacing(4);
    auto* sentence = new Paragraph(text);
    sentence->setAlignment(Qt::AlignHCenter);
    column->addWidget(sentence);
    column->addStretch();
}

}  // namespace orvo
