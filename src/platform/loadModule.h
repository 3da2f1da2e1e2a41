#pragma once

#include <QtGlobal>

namespace orvo {

/// The function `symbol` of the module `name` (such as "orvo_voice"), which lies in the folder of modules
/// beside the programs. Modules bring libraries that a start must not wait for; one that is loaded stays.
/// Null, with a line in the log, when it cannot be loaded. Any thread.
QFunctionPointer loadModule(const char* name, const char* symbol);

}  // namespace orvo
