#include "Platform/UIKit/UIWindowStore.h"

#include "Platform/UIKit/PixelConversion.h"

#include <cairo.h>

#include <new>

namespace veyra {

UIWindowStore::UIWindowStore(int width, int height, double scale)
    : _width(width), _height(height), _scale(scale),
      _surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height)) {
    if (cairo_surface_status(_surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(_surface);
        throw std::bad_alloc();
    }
}

UIWindowStore::~UIWindowStore() {
    cairo_surface_destroy(_surface);
}

void UIWindowStore::copyPixels(const PixelRect& rect, uint8_t* target, size_t stride) const {
    const PixelRect copied = intersection(rect, bounds());
    if (copied.isEmpty())
        return;
    cairo_surface_flush(_surface);
    const unsigned char* const source = cairo_image_surface_get_data(_surface);
    const auto sourceStride = static_cast<size_t>(cairo_image_surface_get_stride(_surface));
    const auto column = static_cast<size_t>(copied.x), targetColumn = static_cast<size_t>(copied.x - rect.x);
    for (int y = copied.y; y < copied.maxY(); ++y) {
        const auto row = static_cast<size_t>(y), targetRow = static_cast<size_t>(y - rect.y);
        convertRGB24ToRGBA(reinterpret_cast<const uint32_t*>(source + row * sourceStride) + column,
                           target + targetRow * stride + 4 * targetColumn, static_cast<size_t>(copied.width));
    }
}

} // namespace veyra
