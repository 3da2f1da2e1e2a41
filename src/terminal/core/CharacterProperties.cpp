#include "terminal/core/CharacterProperties.h"

namespace orvo::detail {

#include "CharacterTable.inc"

}  // namespace orvo::detail
