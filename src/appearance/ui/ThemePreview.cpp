#include "appearance/ui/ThemePreview.h"

#include "appearance/Theme.h"
#include "appearance/controls/StatusPill.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/layouts.h"
#include "appearance/controls/painting.h"
#include "platform/observe.h"

#include <QPainter>

namespace orvo {
namespace {

constexpr int padding = 20;

}  // namespace

ThemePreview::ThemePreview(const Theme& theme, QWidget* parent) : QWidget(parent), m_theme(theme) {
    auto* const column = columnIn(this, 0, QMargins(padding, padding, padding, padding));
    column->addWidget(new TextLabel(tr("Hello, Orvo."), TypeRole::Section));
    column->addSpacing(8);
    auto* const sample = new QLabel(QStringLiteral("$ ready to build\n  Your ideas start here."));
    sample->setTextFormat(Qt::PlainText);
    column->addWidget(sample);
    column->addStretch();
    column->addWidget(new StatusPill(tr("Your palette is saved")), 0, Qt::AlignLeft);
    observe(m_theme, {&Theme::backgroundHexChanged, &Theme::accentHexChanged, &Theme::fontSizeChanged}, this,
            [this, sample] {
                sample->setFont(monoFont(m_theme.fontSize()));
                update();
            });
}

void ThemePreview::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    fillRounded(painter, rect(), 8, toQColor(m_theme.bg()));
    strokeRounded(painter, rect(), 8, toQColor(m_theme.border()));
}

}  // namespace orvo
