#include "terminal/ui/ConsentBar.h"

#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/layouts.h"
#include "appearance/controls/painting.h"

#include <QPainter>

namespace orvo {
namespace {

constexpr int barHeight = 44;

}  // namespace

ConsentBar::ConsentBar(QWidget* host) : QWidget(host) {
    setFixedHeight(barHeight);
    auto* const row = rowIn(this, 8, QMargins(12, 6, 8, 6));
    auto* const question = new ElidedLabel(tr("This program wants to write the clipboard."), TypeRole::Body);
    row->addWidget(question, 1);
    auto* const refuse =
        new OrvoButton(tr("Don't allow"), {}, OrvoButton::Kind::Outlined, OrvoButton::Size::Small);
    connect(refuse, &OrvoButton::clicked, this, &ConsentBar::refused);
    row->addWidget(refuse);
    auto* const allow =
        new OrvoButton(tr("Allow in this session"), {}, OrvoButton::Kind::Outlined, OrvoButton::Size::Small);
    connect(allow, &OrvoButton::clicked, this, &ConsentBar::allowed);
    row->addWidget(allow);
    hide();
}

void ConsentBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Roles& roles = rolesOf(this);
    fillRounded(painter, rect(), 8, toQColor(roles.surface));
    strokeRounded(painter, rect(), 8, toQColor(roles.border), 1);
}

}  // namespace orvo
