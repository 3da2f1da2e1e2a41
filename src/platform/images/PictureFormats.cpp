#include "platform/images/PictureFormats.h"

#include "platform/images/heif.h"
#include "platform/images/tiff.h"

extern "C" Q_DECL_EXPORT const orvo::PictureFormats* orvoPictureFormats() {
    static constexpr orvo::PictureFormats formats = {.heifFrameSizes = orvo::heif::frameSizes,
                                                     .decodeHeif = orvo::heif::decode,
                                                     .tiffFrameSizes = orvo::tiff::frameSizes};
    return &formats;
}
