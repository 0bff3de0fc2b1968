// Decoding of images.
#include "Platform/MapKit/ImageTiles/MKTileImage.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>

namespace veyra {

namespace {

constexpr size_t chunk = 4096; // bytes that the decoder gets before it is asked for the size

/// The decoder's name for the format, by the first bytes: nothing else is ever handed to a decoder.
const char* formatOf(std::string_view bytes) {
    if (bytes.starts_with("\x89PNG\r\n\x1a\n")) {
        return "png";
    }
    if (bytes.starts_with("\xff\xd8\xff")) {
        return "jpeg";
    }
    if (bytes.starts_with("RIFF") && bytes.substr(0, 12).ends_with("WEBP")) {
        return "webp";
    }
    throw MKTileImageError(bytes.empty() ? "there are no bytes" : "the bytes are no PNG, JPEG or WebP picture");
}

/// Whether the end that the format demands is there: decoders are content with a part.
bool hasEnd(std::string_view bytes, std::string_view format) {
    if (format == "png") {
        return bytes.rfind("IEND") != std::string_view::npos;
    }
    if (format == "jpeg") {
        return bytes.rfind("\xff\xd9") != std::string_view::npos;
    }
    uint32_t length = 0; // of what follows the first eight bytes
    for (size_t i = 0; i < 4; ++i) {
        length |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[4 + i])) << 8 * i;
    }
    return bytes.size() >= 8 + uint64_t{length};
}

/// One decoding.
class Decoder {
public:
    explicit Decoder(const char* format) : _loader(gdk_pixbuf_loader_new_with_type(format, &_error)) {
        if (!_loader) {
            fail();
        }
        g_signal_connect(_loader, "size-prepared",
                         G_CALLBACK(+[](GdkPixbufLoader* loader, int width, int height, gpointer self) {
                             if (int64_t{width} * height > MKTileImageMaximumPixels) {
                                 static_cast<Decoder*>(self)->_isTooLarge = true;
                                 gdk_pixbuf_loader_set_size(loader, 0, 0); // which ends the decoding
                             }
                         }),
                         this);
    }
    ~Decoder() {
        if (_loader) {
            close();
            g_object_unref(_loader);
        }
        g_clear_error(&_error);
    }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    GdkPixbuf* decode(std::string_view bytes, bool isWhole) {
        const auto* const data = reinterpret_cast<const guchar*>(bytes.data());
        for (size_t at = 0; at < bytes.size(); at += chunk) {
            const bool taken = gdk_pixbuf_loader_write(_loader, data + at, std::min(chunk, bytes.size() - at), &_error);
            if (!taken || _isTooLarge) {
                fail();
            }
        }
        if (!close() || !isWhole) {
            fail();
        }
        GdkPixbuf* const pixels = gdk_pixbuf_loader_get_pixbuf(_loader);
        if (!pixels) {
            fail();
        }
        return pixels;
    }

private:
    bool close() {
        if (_isClosed) {
            return true;
        }
        _isClosed = true;
        return gdk_pixbuf_loader_close(_loader, _error ? nullptr : &_error);
    }

    [[noreturn]] void fail() {
        std::string reason = _error ? _error->message : "it ends too early";
        if (_isTooLarge) {
            reason = "it is larger than " + std::to_string(MKTileImageMaximumPixels) + " pixels";
        }
        // A constructor that throws runs no destructor.
        if (!_loader) {
            g_clear_error(&_error);
        }
        throw MKTileImageError("the picture cannot be decoded: " + reason);
    }

    GError* _error = nullptr;
    GdkPixbufLoader* const _loader;
    bool _isTooLarge = false;
    bool _isClosed = false;
};

uint32_t premultiplied(const guchar* pixel) {
    const uint32_t alpha = pixel[3];
    const auto scaled = [alpha](uint32_t value) { return (value * alpha + 127) / 255; };
    return alpha << 24 | scaled(pixel[0]) << 16 | scaled(pixel[1]) << 8 | scaled(pixel[2]);
}

bool isTransparentSomewhere(const GdkPixbuf* pixels) {
    if (!gdk_pixbuf_get_has_alpha(pixels)) {
        return false;
    }
    const int width = gdk_pixbuf_get_width(pixels), height = gdk_pixbuf_get_height(pixels);
    for (int y = 0; y < height; ++y) {
        const guchar* row = gdk_pixbuf_read_pixels(pixels) + static_cast<size_t>(gdk_pixbuf_get_rowstride(pixels)) * y;
        for (int x = 0; x < width; ++x) {
            if (row[4 * x + 3] != 255) {
                return true;
            }
        }
    }
    return false;
}

std::shared_ptr<const MKTileImage> imageOf(const GdkPixbuf* pixels) {
    const bool isTransparent = isTransparentSomewhere(pixels);
    const int width = gdk_pixbuf_get_width(pixels), height = gdk_pixbuf_get_height(pixels);
    const int channels = gdk_pixbuf_get_n_channels(pixels);
    cairo_surface_t* const surface =
        cairo_image_surface_create(isTransparent ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24, width, height);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        throw MKTileImageError("there is no memory for the picture");
    }
    for (int y = 0; y < height; ++y) {
        const guchar* from = gdk_pixbuf_read_pixels(pixels) + static_cast<size_t>(gdk_pixbuf_get_rowstride(pixels)) * y;
        auto* to = reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(surface) +
                                               static_cast<size_t>(cairo_image_surface_get_stride(surface)) * y);
        for (int x = 0; x < width; ++x, from += channels) {
            to[x] = isTransparent ? premultiplied(from)
                                  : 0xff000000u | uint32_t{from[0]} << 16 | uint32_t{from[1]} << 8 | from[2];
        }
    }
    cairo_surface_mark_dirty(surface);
    return std::make_shared<const MKTileImage>(surface);
}

} // namespace

std::shared_ptr<const MKTileImage> decodeTileImage(std::string_view bytes) {
    const char* const format = formatOf(bytes);
    Decoder decoder(format);
    return imageOf(decoder.decode(bytes, hasEnd(bytes, format)));
}

} // namespace veyra
