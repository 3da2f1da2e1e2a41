#pragma once

#include <QString>

namespace orvo {

/// The application's version for people, or "Development" when the build names none.
QString versionText();

}  // namespace orvo
