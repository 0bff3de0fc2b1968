// Draws figures into a picture, on every copy of the world that it shows. Used on one thread.
#pragma once

#include "Platform/MapKit/MKOverlayImage.h"

namespace veyra {

class MKOverlayPainter {
public:
    explicit MKOverlayPainter(const MKOverlayScene& scene) : _scene(scene) {}

    /// The pixels that the figures may touch, within the picture; empty when there are none.
    PixelRect extent() const;
    /// Draws the figures from number `first` on, in order, inside `area` (pixels of the picture), to an ARGB32 image
    /// surface whose corner is the picture's pixel (left, top).
    void draw(cairo_surface_t* surface, int left, int top, const PixelRect& area, size_t first);

private:
    /// The copies of the world on which a figure can be seen within an area.
    struct Copies {
        int first, last;
    };
    Copies copiesOf(const MKOverlayFigure& figure, const MKPixelBox& area) const;
    MKPixelBox boxOf(const MKOverlayFigure& figure, int copy) const;

    const MKOverlayScene& _scene;
    MKOutline _outline;
};

} // namespace veyra
