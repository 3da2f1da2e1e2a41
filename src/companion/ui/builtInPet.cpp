#include "companion/ui/builtInPet.h"

#include "platform/images/QtImage.h"

namespace orvo {

std::shared_ptr<const DecodedImage> builtInPet() {
    const QImage drawing(QStringLiteral(":/companion/OrvoPet.png"));
    return drawing.isNull() ? nullptr : std::make_shared<QtImage>(drawing);
}

}  // namespace orvo
