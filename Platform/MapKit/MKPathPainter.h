// Fills and strokes outlines in a picture. What is drawn is cut off around the picture first, so that no coordinate
// leaves what a drawing library can hold and nothing outside costs anything; a line is stroked in one step, so that it
// does not show through itself where it crosses itself. Used on one thread.
#pragma once

#include "Platform/MapKit/MKOutline.h"
#include "Platform/MapKit/MKPathStyle.h"

#include <cairo.h>

namespace veyra {

class MKPathPainter {
public:
    /// Draws to the context, whose unit is the pixel, inside `area`.
    MKPathPainter(cairo_t* cairo, const MKPixelBox& area) : _cairo(cairo), _area(area) {}

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
    void setColor(const MKPathStyle::Color& color, double share);

    cairo_t* const _cairo;
    const MKPixelBox _area;
    std::vector<MKPixelPoint> _ring, _spare;
    std::vector<MKPixelPoint> _points; // of the pieces
    std::vector<Piece> _pieces;
    bool _isWholeRing = false; // the one piece is the closed ring
};

} // namespace veyra
