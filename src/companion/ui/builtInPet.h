#pragma once

#include <memory>

namespace orvo {

class DecodedImage;

/// The pet that comes with the application.
std::shared_ptr<const DecodedImage> builtInPet();

}  // namespace orvo
