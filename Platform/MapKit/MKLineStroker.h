// Strokes lines with the drawing library's own stroker, some thousands of places at a time: a line of any length takes
// the same memory, and the time grows with its length alone. What is drawn in several goes is joined as coverage first,
// so that it does not show through itself. Used on one thread.
#pragma once

#include "Platform/MapKit/MKDrawingTicket.h"
#include "Platform/MapKit/MKOutline.h"
#include "Platform/MapKit/MKPathStyle.h"
#include "Platform/UIKit/CGGeometry.h"

#include <cairo.h>

#include <memory>
#include <vector>

namespace veyra {

class MKLineStroker {
public:
    /// Draws to the context within `area`, to which it is clipped. The context's unit is the pixel.
    MKLineStroker(cairo_t* cairo, const PixelRect& area, const MKDrawingTicket& ticket);

    /// The look of the lines to come; the width is in pixels.
    void setLook(const MKPathStyle& style, double width);
    /// Begins a line.
    void moveTo(MKPixelPoint point);
    /// Begins a ring. Its last place is the one before the first.
    void beginRing(MKPixelPoint point);
    void lineTo(MKPixelPoint point);
    /// Lays the colour where the lines are, and forgets them. The alpha counts `share` times.
    void paint(const MKPathStyle::Color& color, double share);

private:
    /// A line, or what is left of one of which a part has been drawn.
    struct Line {
        size_t first; ///< of `_points`
        bool isRing, isRest;
    };
    struct ContextDeleter {
        void operator()(cairo_t* context) const { cairo_destroy(context); }
    };

    void begin(MKPixelPoint point, bool isRing);
    void endRing();
    void drawSome();
    void drawTo(cairo_t* cairo, bool lastGoesOn);
    void addLine(cairo_t* cairo, size_t line) const;
    void drawPart(cairo_t* cairo, size_t line, bool goesOn) const;
    void drawEnd(cairo_t* cairo, MKPixelPoint end, MKPixelPoint before) const;
    size_t endOf(size_t line) const { return line + 1 < _lines.size() ? _lines[line + 1].first : _points.size(); }
    cairo_t* mask();

    cairo_t* const _cairo;
    const PixelRect _area;
    const MKDrawingTicket& _ticket;
    double _width = 1, _miterLimit = 10;
    cairo_line_join_t _join = CAIRO_LINE_JOIN_ROUND;
    cairo_line_cap_t _cap = CAIRO_LINE_CAP_ROUND;
    std::vector<MKPixelPoint> _points;
    std::vector<Line> _lines;
    MKPixelPoint _ringStart[2];                     // of the ring that is being drawn in parts
    std::unique_ptr<cairo_t, ContextDeleter> _mask; // coverage, made when it is first of use
    bool _hasMask = false;                          // something is in it
};

} // namespace veyra
