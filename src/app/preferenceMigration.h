#pragma once

#include "platform/FilePath.h"

namespace orvo {

class Preferences;

/// Takes over, once, what the application kept under its former identity: nine keys, each only where
/// `current` has no value yet. `formerFolder` holds the former preferences in the same form as ours, or does
/// not exist. When something cannot be stored, the next start tries again.
void migratePreferences(Preferences& current, const FilePath& formerFolder);

}  // namespace orvo
