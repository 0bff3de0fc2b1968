// What a tile is put together from. A plain value; any thread.
#pragma once

#include "Platform/MapKit/ImageTiles/MKTileImage.h"

#include <limits>
#include <vector>

namespace veyra {

/// One place of a tile and the image to show in it: the place's own, or a coarser one that the place lies in.
struct MKTilePiece {
    MKImageKey place, key;
    std::shared_ptr<const MKTileImage> image;
};

struct MKTileImages {
    std::vector<MKTilePiece> pieces; ///< for each place at most one
    bool isWaiting = false;          ///< images are still on their way
    bool coversAll = true;           ///< there is a piece for each place
    int coarseness = 0;              ///< zoom levels by which the coarsest piece of a place that waits is too coarse
    double freshUntil = std::numeric_limits<double>::infinity(); ///< seconds since 1970
    std::string failure;                                         ///< why some image cannot be had; "" otherwise
    bool mayPass = false;                                        ///< every failure may pass

    /// How far the pieces are from what is wanted, for telling whether drawing again is worth it.
    int distance() const;
};

} // namespace veyra
