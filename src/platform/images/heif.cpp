#include "platform/images/heif.h"

#include <QColorSpace>

#include <libheif/heif.h>

#include <memory>
#include <vector>

namespace orvo::heif {
namespace {

template <auto Free>
struct Freed {
    template <class T>
    void operator()(T* thing) const {
        Free(thing);
    }
};
using Context = std::unique_ptr<heif_context, Freed<heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, Freed<heif_image_handle_release>>;
using Picture = std::unique_ptr<heif_image, Freed<heif_image_release>>;

bool isGood(const heif_error& error) {
    return error.code == heif_error_Ok;
}

/// Refers to `bytes` as long as it lives. Null when they cannot be read.
Context open(const QByteArray& bytes) {
    Context context(heif_context_alloc());
    if (!context) return nullptr;
    const heif_error read = heif_context_read_from_memory_without_copy(
        context.get(), bytes.constData(), static_cast<size_t>(bytes.size()), nullptr);
    return isGood(read) ? std::move(context) : nullptr;
}

Handle primaryPicture(heif_context* context) {
    heif_image_handle* handle = nullptr;
    const heif_error error = heif_context_get_primary_image_handle(context, &handle);
    return Handle(isGood(error) ? handle : nullptr);
}

QColorSpace colors(const heif_image_handle* handle) {
    QByteArray profile(static_cast<qsizetype>(heif_image_handle_get_raw_color_profile_size(handle)),
                       Qt::Uninitialized);
    if (profile.isEmpty()) return {};
    const heif_error error = heif_image_handle_get_raw_color_profile(handle, profile.data());
    return isGood(error) ? QColorSpace::fromIccProfile(profile) : QColorSpace();
}

/// The picture's own pixels, without a copy: a large one takes 256 MB.
QImage wrap(Picture picture) {
    const int width = heif_image_get_width(picture.get(), heif_channel_interleaved);
    const int height = heif_image_get_height(picture.get(), heif_channel_interleaved);
    int stride = 0;
    uint8_t* pixels = heif_image_get_plane(picture.get(), heif_channel_interleaved, &stride);
    if (!pixels || width < 1 || height < 1) return {};
    const auto release = [](void* owner) {
        heif_image_release(static_cast<heif_image*>(owner));
    };
    return {pixels, width, height, stride, QImage::Format_RGBA8888, release, picture.release()};
}

}  // namespace

QList<std::optional<QSize>> frameSizes(const QByteArray& bytes) {
    const Context context = open(bytes);
    if (!context) return {};
    std::vector<heif_item_id> ids(
        static_cast<size_t>(heif_context_get_number_of_top_level_images(context.get())));
    const int count =
        heif_context_get_list_of_top_level_image_IDs(context.get(), ids.data(), static_cast<int>(ids.size()));
    QList<std::optional<QSize>> sizes;
    for (int index = 0; index < count; ++index) {
        heif_image_handle* found = nullptr;
        const heif_error error =
            heif_context_get_image_handle(context.get(), ids[static_cast<size_t>(index)], &found);
        const Handle handle(isGood(error) ? found : nullptr);
        if (handle) {
            sizes.append(
                QSize(heif_image_handle_get_width(handle.get()), heif_image_handle_get_height(handle.get())));
        } else {
            sizes.append(std::nullopt);
        }
    }
    return sizes;
}

QImage decode(const QByteArray& bytes) {
    const Context context = open(bytes);
    const Handle handle = context ? primaryPicture(context.get()) : nullptr;
    if (!handle) return {};
    heif_image* decoded = nullptr;
    const heif_error error =
        heif_decode_image(handle.get(), &decoded, heif_colorspace_RGB, heif_chroma_interleaved_RGBA, nullptr);
    Picture picture(isGood(error) ? decoded : nullptr);
    if (!picture) return {};
    QImage image = wrap(std::move(picture));
    image.setColorSpace(colors(handle.get()));
    return image;
}

}  // namespace orvo::heif
