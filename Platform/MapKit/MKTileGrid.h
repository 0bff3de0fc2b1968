// Where the tiles of a scale lie in a view, to the device pixel. Plain values; any thread.
//
// Everything is rounded in steps that do not depend on the place: the copies of the world to whole pixels of the world,
// then the view's corner. So moving a view at its scale moves all tiles by the same whole number of pixels, and tiles
// of neighbouring copies meet without a gap.
#pragma once

#include "Platform/MapKit/MKCamera.h"
#include "Platform/MapKit/MKTile.h"

#include <vector>

namespace veyra {

/// A view of the map in device pixels.
struct MKPixelView {
    double scale = 0;          ///< device pixels a map point
    double left = 0, top = 0;  ///< the view's corner in pixels of the world, rounded
    int width = 0, height = 0; ///< device pixels

    friend bool operator==(const MKPixelView&, const MKPixelView&) = default;

    MKPixelView() = default;
    MKPixelView(const MKCamera& camera, CGSize viewSize, double deviceScale);

    /// The left edge of a copy of the world (0: the middle one) in the view, in pixels.
    double worldLeft(int copy) const;
    /// The copies that a stretch of the view, in pixels, meets.
    int firstCopy(double fromX) const;
    int lastCopy(double toX) const;
};

/// A tile in one copy of the world, with its place in the view.
struct MKPlacedTile {
    int32_t column = 0, row = 0;
    double x = 0, y = 0; ///< the unrounded corner in the view, in pixels
    PixelRect rect;      ///< the whole pixels that the tile covers; neighbours share edges, cut at the end of the copy
};

/// The tiles of a scale (device pixels a map point) that meet an area of the view, in pixels. The scale is not much
/// finer than the view's: all of them are counted out.
std::vector<MKPlacedTile> tilesInArea(double tileScale, const MKPixelView& view, const PixelRect& area);

/// Where one tile, of any scale, meets an area of the view: once for each copy of the world.
std::vector<MKPlacedTile> placesOfTile(const MKTileKey& key, const MKPixelView& view, const PixelRect& area);

/// Columns, and rows, of tiles that the world has at a scale.
int32_t tileColumns(double tileScale);

} // namespace veyra
