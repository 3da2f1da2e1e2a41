#include "workspace/Destination.h"

#include <algorithm>

namespace orvo {
namespace {

struct Page {
    Destination destination;
    QLatin1String text;
    QLatin1String symbol;
};

constexpr std::array<Page, allDestinations.size()> pages = {{
    {Destination::Workspace, QLatin1String("Workspace"), QLatin1String("square.grid.2x2")},
    {Destination::Runs, QLatin1String("Team runs"), QLatin1String("square.stack.3d.up")},
    {Destination::Agents, QLatin1String("Assistants"), QLatin1String("sparkles")},
    {Destination::Files, QLatin1String("Files & runner"), QLatin1String("curlybraces")},
    {Destination::History, QLatin1String("History"), QLatin1String("clock.arrow.circlepath")},
    {Destination::Mac, QLatin1String("Mac actions"), QLatin1String("desktopcomputer")},
    {Destination::Companion, QLatin1String("Companion"), QLatin1String("pawprint")},
    {Destination::Appearance, QLatin1String("Appearance"), QLatin1String("paintpalette")},
    {Destination::Settings, QLatin1String("Settings"), QLatin1String("slider.horizontal.3")},
}};

const Page& pageOf(Destination destination) {
    return *std::ranges::find(pages, destination, &Page::destination);
}

}  // namespace

QString textOf(Destination destination) {
    return pageOf(destination).text;
}

QString symbolOf(Destination destination) {
    return pageOf(destination).symbol;
}

}  // namespace orvo
