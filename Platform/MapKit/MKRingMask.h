// Fills one ring even-odd whatever it looks like: in time that grows with its length alone, where a general filler's
// grows with the square of the edges side by side. Edges are smoothed by 8 × 8 samples a pixel. Used on one thread.
#pragma once

#include "Platform/MapKit/MKDrawingTicket.h"
#include "Platform/MapKit/MKOutline.h"
#include "Platform/UIKit/CGGeometry.h"

#include <cairo.h>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace veyra {

class MKRingMask {
public:
    /// For the pixels of `area`, at least one.
    MKRingMask(const PixelRect& area, const MKDrawingTicket& ticket);

    /// True when the ring has so many edges side by side that a general filler takes long.
    static bool isWorthIt(std::span<const MKPixelPoint> ring, const PixelRect& area);
    using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;
    /// The ring's coverage, as an A8 surface of the area's size. Throws std::bad_alloc, MKDrawingTicket::Abandoned.
    Surface coverageOf(std::span<const MKPixelPoint> ring);

private:
    void addEdge(MKPixelPoint from, MKPixelPoint to, int top, int rows);
    void writeRows(unsigned char* pixels, size_t stride, int rows);

    const PixelRect _area;
    const MKDrawingTicket& _ticket;
    const size_t _words;         // of a row of samples
    std::vector<uint64_t> _bits; // of some rows: where samples change between inside and outside
};

} // namespace veyra
