// What an overlay looks like: its shape and its style, apart from every view, so that drawing threads can hold it.
// Immutable; any thread.
#pragma once

#include "Platform/MapKit/MKOutline.h"
#include "Platform/MapKit/MKPathStyle.h"

namespace veyra {

class MKOverlayFigure {
public:
    /// `bounds` are those of the shape, without its line; null for a shape that is nowhere.
    MKOverlayFigure(MKPathStyle style, const MKMapRect& bounds);
    MKOverlayFigure(const MKOverlayFigure&) = delete;
    MKOverlayFigure& operator=(const MKOverlayFigure&) = delete;
    virtual ~MKOverlayFigure() = default;

    const MKPathStyle& style() const { return _style; }
    const MKMapRect& bounds() const { return _bounds; }
    /// True when there is anything to draw.
    bool isVisible() const { return !MKMapRectIsNull(_bounds) && (_style.stroke || _style.fill); }
    /// The width of its line in pixels at a scale in pixels a map point.
    double lineWidth(double scale, double deviceScale) const;

    /// How many vertices tracing it goes through, about.
    virtual size_t vertexCount() const = 0;
    /// From so many vertices on, drawing takes a while.
    static constexpr size_t muchToDraw = 4096;
    bool isMuch() const { return vertexCount() >= muchToDraw; }
    /// Writes the shape to an empty outline.
    virtual void trace(const MKOutlinePlace& place, MKOutline& outline) const = 0;

private:
    const MKPathStyle _style;
    const MKMapRect _bounds;
    const double _middleLatitude;
};

using MKOverlayFigures = std::vector<std::shared_ptr<const MKOverlayFigure>>;

} // namespace veyra
