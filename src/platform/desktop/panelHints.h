#pragma once

class QWindow;

namespace orvo {

/// Lets a floating window stay in view whichever virtual desktop the person turns to. For a window that is
/// about to be shown; the window manager forgets it when the window hides. Does nothing off X11.
void stayOnAllDesktops(const QWindow& window);

/// Whether something blends translucent windows with what lies below them; without it their clear parts are
/// black. Always so off X11.
bool isComposited();

/// Whether the platform knows status items at all; a place for them may still be missing.
bool hasStatusItems();

}  // namespace orvo
