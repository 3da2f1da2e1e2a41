#pragma once

class QMenuBar;

namespace orvo {

class OrvoApplication;

/// Fills the menu bar. The items call the application's operations; those of "Edit" act on the control that
/// has the keyboard focus. Controls that take text claim their editing keys before the menu sees them.
void createMenu(QMenuBar& bar, OrvoApplication& application);

}  // namespace orvo
