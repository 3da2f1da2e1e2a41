#pragma once

#include <QString>

#include <array>

namespace orvo {

/// The nine pages of the main window.
enum class Destination { Workspace, Runs, Agents, Files, History, Mac, Companion, Appearance, Settings };

inline constexpr std::array allDestinations = {
    Destination::Workspace, Destination::Runs,       Destination::Agents,
    Destination::Files,     Destination::History,    Destination::Mac,
    Destination::Companion, Destination::Appearance, Destination::Settings};

/// The page's title, which is also its stored value.
QString textOf(Destination destination);
/// Symbol name of its sidebar icon.
QString symbolOf(Destination destination);

}  // namespace orvo
