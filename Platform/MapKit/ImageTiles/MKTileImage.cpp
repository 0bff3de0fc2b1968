// Decoding of images.
#include "Platform/MapKit/ImageTiles/MKTileImage.h"

#include "Platform/UIKit/UIImage.h"

#include <algorithm>

namespace veyra {

namespace {

enum class Format { PNG, JPEG, WebP };

/// By the first bytes: nothing else is ever handed to a decoder.
Format formatOf(std::string_view bytes) {
    if (bytes.starts_with("\x89PNG\r\n\x1a\n")) {
        return Format::PNG;
    }
    if (bytes.starts_with("\xff\xd8\xff")) {
        return Format::JPEG;
    }
    if (bytes.starts_with("RIFF") && bytes.substr(0, 12).ends_with("WEBP")) {
        return Format::WebP;
    }
    throw MKTileImageError(bytes.empty() ? "there are no bytes" : "the bytes are no PNG, JPEG or WebP picture");
}

/// Whether the end that the format demands is there: decoders are content with a part.
bool hasEnd(std::string_view bytes, Format format) {
    switch (format) {
    case Format::PNG:
        return bytes.rfind("IEND") != std::string_view::npos;
    case Format::JPEG:
        return bytes.rfind("\xff\xd9") != std::string_view::npos;
    case Format::WebP:
        break;
    }
    uint32_t length = 0; // of what follows the first eight bytes
    for (size_t i = 0; i < 4; ++i) {
        length |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[4 + i])) << 8 * i;
    }
    return bytes.size() >= 8 + uint64_t{length};
}

bool isOpaque(const UIImage& image) {
    const size_t count = static_cast<size_t>(image.pixelWidth()) * static_cast<size_t>(image.pixelHeight());
    return std::all_of(image.pixels(), image.pixels() + count, [](uint32_t pixel) { return pixel >> 24 == 255; });
}

cairo_surface_t* surfaceOf(const UIImage& image) {
    const cairo_format_t format = isOpaque(image) ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32;
    // Nobody draws into it.
    auto* const bytes = const_cast<unsigned char*>(reinterpret_cast<const unsigned char*>(image.pixels()));
    return cairo_image_surface_create_for_data(bytes, format, image.pixelWidth(), image.pixelHeight(),
                                               4 * image.pixelWidth());
}

} // namespace

MKTileImage::MKTileImage(std::shared_ptr<const UIImage> image)
    : _image(std::move(image)), _surface(surfaceOf(*_image)) {}

MKTileImage::~MKTileImage() {
    cairo_surface_destroy(_surface);
}

size_t MKTileImage::byteSize() const {
    return sizeof(MKTileImage) + sizeof(uint32_t) * static_cast<size_t>(width()) * static_cast<size_t>(height());
}

std::shared_ptr<const MKTileImage> decodeTileImage(std::string_view bytes) {
    const Format format = formatOf(bytes);
    auto image = hasEnd(bytes, format) ? UIImage::imageWithData(bytes) : nullptr;
    if (!image) {
        throw MKTileImageError("the picture is damaged, or larger than " +
                               std::to_string(UIImage::maximumDecodedPixels) + " pixels");
    }
    return std::make_shared<const MKTileImage>(std::move(image));
}

} // namespace veyra
