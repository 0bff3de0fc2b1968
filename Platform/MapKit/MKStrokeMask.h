// Strokes lines with round corners and ends: as coverage, joined by the greater value, so that a line drawn in many
// short pieces looks like one and does not show through itself; then the colour goes through the mask once. Many times
// as fast as a general stroker for the long lines of very short pieces that overlays are. Used on one thread.
#pragma once

#include "Platform/MapKit/MKOutline.h"
#include "Platform/MapKit/MKPathStyle.h"
#include "Platform/UIKit/CGGeometry.h"

#include <cairo.h>

#include <array>

namespace veyra {

class MKStrokeMask {
public:
    /// For the pixels of `area`. The mask is empty.
    explicit MKStrokeMask(const PixelRect& area);

    /// The width of the lines to come, in pixels; above 0.
    void setWidth(double width);
    void moveTo(MKPixelPoint point) { _at = point; }
    /// A stretch from the last point with round ends, that one included.
    void lineTo(MKPixelPoint point);
    /// Lays the colour over an ARGB32 surface, whose corner is the pixel (left, top), where lines are, and empties the
    /// mask. The alpha counts `share` times.
    void paint(cairo_surface_t* surface, int left, int top, const MKPathStyle::Color& color, double share);

private:
    /// Pixels that are covered at a time; a row has room for as many more.
    static constexpr int lanes = 8;

    struct Stretch;
    std::array<int, lanes> coverageAt(const Stretch& stretch, float px, float py) const;
    void addRow(const Stretch& stretch, int row, float from, float to);

    const PixelRect _area;
    const size_t _stride; // of a row of coverage
    float _reach = 1;     // distance from the line beyond which a pixel is untouched
    float _greatest = 1;  // coverage; less for lines thinner than a pixel
    MKPixelPoint _at;
    std::vector<uint8_t> _coverage; // row by row
    struct Extent {
        int first, end; // columns that hold anything
        int whole = 0;  // of them, that cannot hold more
    };
    std::vector<Extent> _rows;
    int _firstRow, _endRow; // that hold anything
    int _wholeRows = 0;     // that cannot hold more
};

} // namespace veyra
