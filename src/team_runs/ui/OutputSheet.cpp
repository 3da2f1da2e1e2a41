#include "team_runs/ui/OutputSheet.h"

#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/TextViewer.h"
#include "appearance/controls/Well.h"
#include "appearance/controls/layouts.h"

namespace orvo {
namespace {

constexpr int panelWidth = 760;

/// Scrolls by itself, so that the sheet, which is as high as this where the window allows it, need not.
class Output final : public TextViewer {
public:
    using TextViewer::TextViewer;

    QSize sizeHint() const override { return {panelWidth, 440}; }
};

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
    auto* const text = new Output(tr("Assistant output"), TextViewer::Lines::Wrap);
    text->setText(output);
    auto* const well = new Well;
    columnIn(well, 0, QMargins(1, 1, 1, 1))->addWidget(text);
    setContent(header, well, nullptr);
}

void OutputSheet::present() {
    open(m_done);
}

}  // namespace orvo
