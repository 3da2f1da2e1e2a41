#include "platform/desktop/LoadedDesktopControl.h"
#include "platform/desktop/X11DesktopControl.h"

/// The module "orvo_desktop".
extern "C" Q_DECL_EXPORT orvo::DesktopControl* orvoMakeDesktopControl() {
    return new orvo::X11DesktopControl;
}
