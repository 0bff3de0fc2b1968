// Draws figures into a picture, on every copy of the world that it shows. Used on one thread; much to draw is drawn in
// bands, several at a time.
#pragma once

#include "Platform/MapKit/MKDrawingTicket.h"
#include "Platform/MapKit/MKOverlayImage.h"
#include "Platform/UIKit/DamageList.h"

namespace veyra {

class MKOverlayPainter {
public:
    MKOverlayPainter(const MKOverlayScene& scene, MKDrawingTicket& ticket) : _scene(scene), _ticket(ticket) {}

    /// The pixels that the figures may touch, within the picture; empty when there are none.
    PixelRect extent() const;
    /// Adds the pixels that a figure, of the scene or not, may touch within an area of the picture.
    void addAreas(const MKOverlayFigure& figure, const PixelRect& area, DamageList& areas) const;
    /// Draws the figures from number `first` on, in order, inside `area` (pixels of the picture), to an ARGB32 image
    /// surface whose corner is the picture's pixel (left, top). Throws std::bad_alloc, MKDrawingTicket::Abandoned.
    void draw(cairo_surface_t* surface, int left, int top, const PixelRect& area, size_t first) const;

private:
    /// The copies of the world on which a figure can be seen within an area.
    struct Copies {
        int first, last;
    };
    bool isMuch(size_t first) const;
    void drawBand(size_t band, cairo_surface_t* surface, int left, int top, const PixelRect& area, size_t first) const;
    Copies copiesOf(const MKOverlayFigure& figure, const MKPixelBox& area) const;
    MKPixelBox boxOf(const MKOverlayFigure& figure, int copy) const;

    const MKOverlayScene& _scene;
    MKDrawingTicket& _ticket;
};

} // namespace veyra
