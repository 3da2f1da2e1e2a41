#include "team_runs/ui/OutputSheet.h"

#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/TextViewer.h"
#include "appearance/controls/layouts.h"

namespace orvo {
namespace {

constexpr int panelWidth = 760;
constexpr int textHeight = 440;

}  // namespace

OutputSheet::OutputSheet(const QString& output, QWidget* window)
    : Sheet(window, panelWidth), m_done(new OrvoButton(tr("Done"))) {
    setAccessibleName(tr("Assistant output"));
    auto* const header = new QWidget;
    auto* const row = rowIn(header, 8, QMargins(0, 0, 0, 16));
    row->addWidget(new TextLabel(tr("Assistant output"), TypeRole::Section));
    row->addStretch();
    row->addWidget(m_done);
    connect(m_done, &OrvoButton::clicked, this, &Sheet::dismiss);
    auto* const text = new TextViewer(tr("Assistant output"), TextViewer::Lines::Wrap);
    text->setMinimumHeight(textHeight);
    text->setText(output);
    setContent(header, text, nullptr);
}

void OutputSheet::present() {
    open(m_done);
}

}  // namespace orvo
