// Fills and strokes outlines in a picture. What is drawn is cut off around the picture first, so that no coordinate
// leaves what a drawing library can hold and nothing outside costs anything; a line is stroked in one step, so that it
// does not show through itself where it crosses itself. Used on one thread.
#pragma once

#include "Platform/MapKit/MKLineStroker.h"
#include "Platform/MapKit/MKOutline.h"
#include "Platform/MapKit/MKPathStyle.h"
#include "Platform/MapKit/MKStrokeMask.h"

#include <cairo.h>
#include <memory>

namespace veyra {

class MKPathPainter {
public:
    /// Draws to the context inside `area`, to which it is clipped. The context's unit is the pixel, its target an
    /// ARGB32 image surface, whose corner is the pixel (left, top). Its methods throw MKDrawingTicket::Abandoned when
    /// the drawing is no longer wanted.
    MKPathPainter(cairo_t* cairo, const PixelRect& area, int left, int top, const MKDrawingTicket& ticket);

    /// The area within the ring, even-odd.
    void fill(const MKOutline& ring, const MKPathStyle::Color& color);
    /// The line, `width` pixels wide; dashes are scaled by `deviceScale`, pixels a point. A line of more dashes than
    /// anybody could see is solid.
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
    void setDashes(const MKPathStyle& style, double deviceScale);
    double lengthOfPieces() const;
    void addDashes(const Piece& piece, double phase);
    void addSolid(const Piece& piece);
    void addRing(const Piece& piece);
    void moveTo(MKPixelPoint point);
    void lineTo(MKPixelPoint point);

    cairo_t* const _cairo;
    const PixelRect _pixels;
    const int _left, _top;
    const MKPixelBox _area;
    const MKDrawingTicket& _ticket;
    MKLineStroker _stroker;
    std::unique_ptr<MKStrokeMask> _mask; // made when it is first of use
    bool _usesMask = false;              // for the line under way, not the stroker
    size_t _unchecked = 0;               // stretches since the ticket was looked at
    std::vector<MKPixelPoint> _ring, _spare;
    std::vector<MKPixelPoint> _points; // of the pieces
    std::vector<Piece> _pieces;
    bool _isWholeRing = false;     // the one piece is the closed ring
    std::vector<double> _dashEnds; // where each dash and each gap of the pattern ends, in pixels
};

} // namespace veyra
