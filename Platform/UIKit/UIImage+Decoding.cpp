// Images from the bytes of a file. What arrives from a network is trusted with nothing: the kind of image is told by
// its first bytes and only that decoder is used, and the size is looked at before memory is taken for the pixels.
#include "Platform/Foundation/WorkQueue.h"
#include "Platform/UIKit/ImageFileEnd.h"
#include "Platform/UIKit/UIImage.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>

namespace veyra {

namespace {

using namespace std::string_view_literals;

/// The decoder does not check its own errors while it sets up an animation.
bool isAnimatedWebP(std::string_view data) {
    return data.substr(12, 4) == "VP8X"sv && (data[20] & 2) != 0;
}

/// A JPEG picture may go over all its pixels again and again, at the cost of a few bytes each time.
bool hasTooManyScans(std::string_view data) {
    constexpr int mostScans = 64; // 10 are usual
    constexpr unsigned end = 0xd9, scan = 0xda;
    const auto byte = [&](size_t at) { return unsigned{static_cast<unsigned char>(data[at])}; };
    int scans = 0;
    for (size_t at = 2; at + 4 <= data.size();) {
        const unsigned marker = byte(at) == 0xff ? byte(at + 1) : 0;
        if (marker == end)
            return false; // what follows is no part of the picture
        if (marker < 0xc0 || marker == 0xff || (marker >= 0xd0 && marker <= 0xd7)) {
            ++at; // within a scan
            continue;
        }
        scans += marker == scan;
        if (scans > mostScans)
            return true;
        at += 2 + (byte(at + 2) << 8 | byte(at + 3));
    }
    return false;
}

/// The decoder for bytes that begin so, or null: for those of no image, and of one that is cut off where its decoder
/// would not say so.
const char* decoderFor(std::string_view data) {
    if (data.starts_with("\x89PNG\r\n\x1a\n"sv))
        return reachesEndOfPNG(data) ? "png" : nullptr;
    if (data.starts_with("\xff\xd8\xff"sv))
        return reachesEndOfJPEG(data) && !hasTooManyScans(data) ? "jpeg" : nullptr;
    if (data.starts_with("GIF87a"sv) || data.starts_with("GIF89a"sv))
        return "gif";
    if (data.starts_with("RIFF"sv) && data.size() >= 21 && data.substr(8, 4) == "WEBP"sv)
        return isAnimatedWebP(data) || !reachesEndOfWebP(data) ? nullptr : "webp";
    if (data.starts_with("\x1f\x8b"sv)) // compressed SVG
        return "svg";
    if (data.starts_with("\xef\xbb\xbf"sv))
        data.remove_prefix(3);
    const size_t first = data.find_first_not_of(" \t\r\n"sv);
    return first != data.npos && data[first] == '<' ? "svg" : nullptr;
}

/// Takes the pixels only if there are not too many.
void refuseTooLarge(GdkPixbufLoader* loader, int width, int height, gpointer refused) {
    if (width > 0 && height > 0 && int64_t{width} * height <= UIImage::maximumDecodedPixels)
        return;
    *static_cast<bool*>(refused) = true;
    gdk_pixbuf_loader_set_size(loader, 0, 0);
}

/// The first picture in the data, upright, or null. The caller gives it back.
GdkPixbuf* decoded(const char* decoder, std::string_view data) {
    GdkPixbufLoader* const loader = gdk_pixbuf_loader_new_with_type(decoder, nullptr);
    if (!loader) // the machine has no such decoder
        return nullptr;
    bool refused = false;
    g_signal_connect(loader, "size-prepared", G_CALLBACK(refuseTooLarge), &refused);
    bool good = true;
    // In pieces, so that an image that was refused is not decoded any further.
    constexpr size_t piece = 4096;
    for (; good && !refused && !data.empty(); data.remove_prefix(std::min(piece, data.size())))
        good = gdk_pixbuf_loader_write(loader, reinterpret_cast<const guchar*>(data.data()),
                                       std::min(piece, data.size()), nullptr);
    good = gdk_pixbuf_loader_close(loader, nullptr) && good && !refused;
    GdkPixbuf* const pixbuf = good ? gdk_pixbuf_loader_get_pixbuf(loader) : nullptr;
    GdkPixbuf* const upright = pixbuf ? gdk_pixbuf_apply_embedded_orientation(pixbuf) : nullptr;
    g_object_unref(loader);
    return upright;
}

uint32_t premultiplied(uint32_t channel, uint32_t alpha) {
    const uint32_t product = channel * alpha + 0x80;
    return (product + (product >> 8)) >> 8;
}

UIImage::Pixels premultipliedPixels(const GdkPixbuf* pixbuf) {
    const int width = gdk_pixbuf_get_width(pixbuf);
    const int height = gdk_pixbuf_get_height(pixbuf);
    const int channels = gdk_pixbuf_get_n_channels(pixbuf);
    const auto stride = static_cast<size_t>(gdk_pixbuf_get_rowstride(pixbuf));
    const guint8* const bytes = gdk_pixbuf_read_pixels(pixbuf);
    UIImage::Pixels pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    uint32_t* out = pixels.data();
    for (int y = 0; y < height; ++y) {
        const guint8* in = bytes + static_cast<size_t>(y) * stride;
        const uint32_t* const end = out + width;
        if (channels == 4) {
            for (; out != end; in += 4) {
                const uint32_t alpha = in[3];
                *out++ = alpha << 24 | premultiplied(in[0], alpha) << 16 | premultiplied(in[1], alpha) << 8 |
                         premultiplied(in[2], alpha);
            }
        } else {
            for (; out != end; in += 3) {
                *out++ = 255u << 24 | uint32_t{in[0]} << 16 | uint32_t{in[1]} << 8 | in[2];
            }
        }
    }
    return pixels;
}

} // namespace

std::shared_ptr<UIImage> UIImage::imageWithData(std::string_view data) {
    const char* const decoder = decoderFor(data);
    GdkPixbuf* const pixbuf = decoder ? decoded(decoder, data) : nullptr;
    if (!pixbuf)
        return nullptr;
    std::shared_ptr<UIImage> image;
    if (gdk_pixbuf_get_bits_per_sample(pixbuf) == 8)
        image =
            imageWithPixels(gdk_pixbuf_get_width(pixbuf), gdk_pixbuf_get_height(pixbuf), premultipliedPixels(pixbuf));
    g_object_unref(pixbuf);
    return image;
}

void UIImage::decodeData(std::string data, std::function<void(std::shared_ptr<UIImage>)> completion) {
    dispatch_async(dispatch_get_global_queue(), [data = std::move(data), completion = std::move(completion)]() mutable {
        std::shared_ptr<UIImage> image;
        runGuarded("image decoder", [&] { image = imageWithData(data); });
        dispatch_async(dispatch_get_main_queue(),
                       [image = std::move(image), completion = std::move(completion)] { completion(image); });
    });
}

} // namespace veyra
