// The pixels of a window. The window draws into them in `drawFrame` only, and takes others when it is resized; so
// whoever holds them may read them on any thread while no frame is drawn.
#pragma once

#include "Platform/UIKit/DamageList.h"

#include <cstddef>
#include <cstdint>

typedef struct _cairo_surface cairo_surface_t;

namespace veyra {

class UIWindowStore {
public:
    /// `width` × `height` pixels, both above 0, seen at `scale` pixels a point. Throws
    /// std::bad_alloc.
    UIWindowStore(int width, int height, double scale);
    ~UIWindowStore();
    UIWindowStore(const UIWindowStore&) = delete;
    UIWindowStore& operator=(const UIWindowStore&) = delete;

    PixelRect bounds() const { return {0, 0, _width, _height}; }
    double scale() const { return _scale; }
    /// Cairo RGB24.
    cairo_surface_t* surface() const { return _surface; }

    /// Copies a rectangle to rows of R, G, B, A bytes (alpha 255), `stride` bytes apart; `target` is the place of the
    /// rectangle's first pixel. What of it lies outside the bounds is left as it is.
    void copyPixels(const PixelRect& rect, uint8_t* target, size_t stride) const;

private:
    const int _width, _height;
    const double _scale;
    cairo_surface_t* const _surface;
};

} // namespace veyra
