#include "workspace/ui/PlaceholderPage.h"

#include "appearance/controls/PageTitle.h"
#include "appearance/controls/ScrollPage.h"
#include "workspace/Destination.h"

#include <QCoreApplication>
#include <QVBoxLayout>

namespace orvo {
namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("PlaceholderPage", text);
}

struct Heading {
    QString eyebrow;
    QString title;
    QString subtitle;
};

Heading headingOf(Destination destination) {
    switch (destination) {
        case Destination::Workspace:
            break;
        case Destination::Runs:
            return {
                tr("Build. Compare. Choose."), tr("Your team’s work, in one place."),
                tr("Each assistant works in its own copy. Review the output and files, then choose what goes "
                   "into your project.")};
        case Destination::Agents:
            return {
                tr("Connected intelligence"), tr("Your best minds, together."),
                tr("Run the original tools in Orvo. Each provider keeps its own login, model settings, and "
                   "approvals.")};
        case Destination::Files:
            return {QString(), tr("Files & runner"),
                    tr("Edit a file, run it locally, and inspect the output in a terminal.")};
        case Destination::History:
            return {tr("Session memory"), tr("Pick up the thread."),
                    tr("Orvo saves the latest 50 completed terminal snapshots on this Mac. Original provider "
                       "sessions "
                       "stay in their own tools.")};
        case Destination::Mac:
            return {tr("Mac assistant"), tr("Say what you want to do."),
                    tr("Codex drafts a short plan. Review it, then run each step when you’re ready. Orvo can "
                       "open apps "
                       "and links, type text, and use supported keyboard shortcuts.")};
        case Destination::Companion:
            return {tr("Your pixel companion"), tr("A familiar face, always close."),
                    tr("Your reference, reimagined in pixels. Built into Orvo and ready on your desktop, "
                       "even when the "
                       "workspace is minimized.")};
        case Destination::Appearance:
            return {tr("Make it yours"), tr("A workspace in your colors."),
                    tr("Start with a palette, then tune the background, accent, and terminal text size. "
                       "Changes apply "
                       "immediately.")};
        case Destination::Settings:
            return {tr("Workspace preferences"), tr("Simple on the surface."),
                    tr("Native on the inside. Orvo coordinates the tools you already trust.")};
    }
    return {};
}

bool isReadingPage(Destination destination) {
    return destination != Destination::Runs && destination != Destination::Files &&
           destination != Destination::History;
}

}  // namespace

QWidget* makePlaceholderPage(Destination destination) {
    const Heading heading = headingOf(destination);
    auto* const page =
        new ScrollPage(isReadingPage(destination) ? ScrollPage::readingWidth : QWIDGETSIZE_MAX);
    page->column().addWidget(new PageTitle(heading.eyebrow, heading.title, heading.subtitle));
    page->column().addStretch();
    return page;
}

}  // namespace orvo
