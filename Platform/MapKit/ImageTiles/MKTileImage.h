// Images of tiles as sources have them: squares of the XYZ scheme, whatever size and format. Immutable and shared; any
// thread.
#pragma once

#include <cairo.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace veyra {

/// Zoom 0 is one image of the whole world, each further zoom has twice as many columns and rows. Rows count from the
/// north.
struct MKImageKey {
    uint64_t set = 0; ///< MKImageSet::identifier
    int zoom = 0, column = 0, row = 0;
    bool doubled = false; ///< twice the pixels for the same area
    friend bool operator==(const MKImageKey&, const MKImageKey&) = default;

    /// The image of the next lower zoom that this one lies in.
    MKImageKey parent() const { return {set, zoom - 1, column / 2, row / 2, doubled}; }
};

class UIImage;

class MKTileImage {
public:
    explicit MKTileImage(std::shared_ptr<const UIImage> image);
    MKTileImage(const MKTileImage&) = delete;
    MKTileImage& operator=(const MKTileImage&) = delete;
    ~MKTileImage();

    /// RGB24, or ARGB32 when something of the image is transparent. Not to be drawn into.
    cairo_surface_t* surface() const { return _surface; }
    int width() const { return cairo_image_surface_get_width(_surface); }
    int height() const { return cairo_image_surface_get_height(_surface); }
    bool isOpaque() const { return cairo_image_surface_get_format(_surface) == CAIRO_FORMAT_RGB24; }
    size_t byteSize() const;

private:
    const std::shared_ptr<const UIImage> _image;
    cairo_surface_t* const _surface; // of the image's pixels
};

/// Bytes that are no picture, or too large a one. The message says what they are.
class MKTileImageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Decodes a PNG, JPEG or WebP picture. Throws MKTileImageError; what is too large is refused before memory is taken.
std::shared_ptr<const MKTileImage> decodeTileImage(std::string_view bytes);

} // namespace veyra

template <>
struct std::hash<veyra::MKImageKey> {
    size_t operator()(const veyra::MKImageKey& key) const noexcept {
        size_t value = key.set * 64 + static_cast<size_t>(key.zoom) * 2 + key.doubled;
        value = value * 1000003 + static_cast<uint32_t>(key.column);
        return value * 1000003 + static_cast<uint32_t>(key.row);
    }
};
