// How much of each pixel of a square is land, from the shapes of a base map. Made and read on one thread.
#pragma once

#include "Platform/MapKit/MKBasemapCells.h"

#include <vector>

namespace veyra {

class MKLandMask {
public:
    /// The square with its corner at a map point, of so many pixels a map point. Throws BasemapError when the shapes
    /// are damaged, std::bad_alloc when there is no memory.
    MKLandMask(const BasemapFile& shapes, MKBasemapCells& cells, double originX, double originY, double scale,
               int side);

    /// 0 for water, lakes too, to 255.
    uint8_t at(int x, int y) const {
        return _shares[static_cast<size_t>(y) * static_cast<size_t>(_side) + static_cast<size_t>(x)];
    }
    /// Row by row.
    const std::vector<uint8_t>& shares() const { return _shares; }

private:
    const int _side;
    std::vector<uint8_t> _shares;
};

} // namespace veyra
