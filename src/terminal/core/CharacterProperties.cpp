#include "terminal/core/CharacterProperties.h"

namespace orvo::detail {

#include "character_properties.inc"

}  // namespace orvo::detail
