// A picture of the overlays of a map: of some list of figures, at a place and a scale, transparent where there is
// nothing. Drawn once on a drawing thread; immutable then, and free to share.
#pragma once

#include "Platform/MapKit/MKDrawingTicket.h"
#include "Platform/MapKit/MKOverlayFigure.h"
#include "Platform/MapKit/MKTileGrid.h"

#include <cairo.h>

namespace veyra {

/// What a picture shows.
struct MKOverlayScene {
    MKPixelView view; ///< the place and size of the picture, in device pixels
    double deviceScale = 1;
    std::shared_ptr<const MKOverlayFigures> figures; ///< in drawing order; not null
};

class MKOverlayPainter;

class MKOverlayImage {
public:
    /// Draws the scene. What `former` (may be null) shows of the same is taken over from it. Throws std::bad_alloc, and
    /// MKDrawingTicket::Abandoned when the drawing is no longer wanted.
    static std::shared_ptr<const MKOverlayImage> draw(const MKOverlayScene& scene, const MKOverlayImage* former,
                                                      MKDrawingTicket& ticket);
    explicit MKOverlayImage(const MKOverlayScene& scene) : _scene(scene) {}
    MKOverlayImage(const MKOverlayImage&) = delete;
    MKOverlayImage& operator=(const MKOverlayImage&) = delete;
    ~MKOverlayImage() { cairo_surface_destroy(_surface); }

    const MKOverlayScene& scene() const { return _scene; }
    /// The part that holds anything, in pixels of the picture; empty when nothing is to be seen.
    const PixelRect& content() const { return _content; }
    /// True when the picture was made from another one: where that one shows the same part of the world, the two look
    /// different in `changes` alone.
    bool isMadeFrom(const MKOverlayImage& other) const { return _former == &other; }
    /// In pixels of this picture.
    const std::vector<PixelRect>& changes() const { return _changes; }
    /// ARGB32, as large as `content`; null when that is empty.
    cairo_surface_t* surface() const { return _surface; }

private:
    void makeSurface();
    bool takeOver(const MKOverlayImage& former, const PixelRect& held, MKOverlayPainter& painter);
    PixelRect placeOf(const MKOverlayImage& other) const;
    void copy(const MKOverlayImage& former, const PixelRect& held);
    void clear(const PixelRect& area);

    const MKOverlayScene _scene;
    PixelRect _content;
    cairo_surface_t* _surface = nullptr;
    const MKOverlayImage* _former = nullptr; // only to compare with
    std::vector<PixelRect> _changes;
};

} // namespace veyra
