// What of a window must be drawn anew: a few disjoint rectangles of device pixels. Small rectangles near each other are
// merged, as drawing some more pixels costs less than another walk over the views; far ones stay apart. A plain value.
#pragma once

#include "Platform/UIKit/CGGeometry.h"

#include <vector>

namespace veyra {

class DamageList {
public:
    /// More rectangles than this are merged, those first that lie closest.
    static constexpr size_t maximumCount = 8;

    bool isEmpty() const { return _rects.empty(); }
    void clear() { _rects.clear(); }
    /// Adds a rectangle; an empty one changes nothing.
    void add(const PixelRect& rect);
    /// The rectangles, disjoint, by rows from the top and within a row from the left; the list is empty afterwards.
    std::vector<PixelRect> take();

private:
    void addDisjoint(const PixelRect& rect);
    void mergeClosest();

    std::vector<PixelRect> _rects;
};

} // namespace veyra
