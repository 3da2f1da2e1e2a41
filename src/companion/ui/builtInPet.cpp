#include "companion/ui/builtInPet.h"

#include "platform/images/QtImage.h"

#include <QImageReader>

namespace orvo {

std::shared_ptr<const DecodedImage> builtInPet() {
    // Told the format, because trying all of them would load the libraries of all.
    QImageReader reader(QStringLiteral(":/companion/OrvoPet.png"), "png");
    reader.setAutoDetectImageFormat(false);
    const QImage drawing = reader.read();
    return drawing.isNull() ? nullptr : std::make_shared<QtImage>(drawing);
}

}  // namespace orvo
