// Fills and strokes outlines in a picture. What is drawn is cut off around the picture first, so that no coordinate
// leaves what a drawing library can hold and nothing outside costs anything; a line is stroked in one step, so that it
// does not show through itself where it crosses itself. Used on one thread.
#pragma once

#include "Platform/MapKit/MKOutline.h"
#include "Platform/MapKit/MKPathStyle.h"
#include "Platform/MapKit/MKStrokeMask.h"

#include <cairo.h>
#include <memory>

namespace veyra {

class MKPathPainter {
public:
    /// Draws to the context inside `area`, to which it is clipped. The context's unit is the pixel, its target an
    /// ARGB32 image surface, whose corner is the pixel (left, top).
    MKPathPainter(cairo_t* cairo, const PixelRect& area, int left, int top);

    /// The area within the ring, even-odd.
    void fill(const MKOutline& ring, const MKPathStyle::Color& color);
    /// The line, `width` pixels wide; dashes are scaled by `deviceScale`, pixels a point.
    void stroke(const MKOutline& outline, const MKPathStyle& style, double width, double deviceScale);

    /// Pixels by which the line may reach beyond the places that it goes through.
    static double reachOf(const MKPathStyle& style, double width);

private:
    /// A part of a line that lies inside the cut: points [first, first + count) of `_pieces`.
    struct Piece {
        size_t first, count;
        double length; ///< along the whole line to its first point, in pixels
    };

    void cutRing(const MKOutline& ring);
    void cutRingAtEdge(double MKPixelPoint::*axis, double edge, double sign);
    void cutLine(const MKOutline& outline, const MKPixelBox& box);
    void joinEnds(const MKOutline& outline);
    void addPieces();
    void addDashes(const MKPathStyle& style, double deviceScale);
    void addDashesOf(const Piece& piece, const std::vector<double>& dashes, double phase);
    bool canUseMask(const MKPathStyle& style, double width) const;
    void moveTo(MKPixelPoint point);
    void lineTo(MKPixelPoint point);
    void strokePath(const MKPathStyle& style, double width, double share);
    void setColor(const MKPathStyle::Color& color, double share);

    cairo_t* const _cairo;
    const PixelRect _pixels;
    const int _left, _top;
    const MKPixelBox _area;
    std::unique_ptr<MKStrokeMask> _mask; // made when it is first of use
    bool _usesMask = false;              // for the line under way
    std::vector<MKPixelPoint> _ring, _spare;
    std::vector<MKPixelPoint> _points; // of the pieces
    std::vector<Piece> _pieces;
    bool _isWholeRing = false; // the one piece is the closed ring
};

} // namespace veyra
