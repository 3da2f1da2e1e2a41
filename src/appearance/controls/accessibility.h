#pragma once

namespace orvo {

/// Teaches Qt's accessibility what our own widgets are: labels, alerts, dialogs, tabs, entries that can be
/// chosen. Done once by `applyTheme`; more calls do nothing.
void installControlAccessibility();

}  // namespace orvo
