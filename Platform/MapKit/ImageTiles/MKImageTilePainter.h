// Puts a tile together from images. Any thread; lives as long as the drawing.
#pragma once

#include "Platform/MapKit/ImageTiles/MKTileImages.h"
#include "Platform/MapKit/MKTile.h"

namespace veyra {

/// Where the images of a zoom lie in a tile.
struct MKImageGrid {
    /// The grid in which a tile is drawn: the zoom whose images have about as many pixels as the tile, within the
    /// limits; `imageSide` is the side of an image in pixels as the source counts.
    MKImageGrid(const MKTileKey& key, int imageSide, int minimumZoom, int maximumZoom);

    int zoom;
    double imagePixel; ///< the tile's pixels a pixel of an image
    double left, top;  ///< the tile's corner in the images' pixels, from the world's corner
    int firstColumn, firstRow, lastColumn, lastRow; ///< of the images that the tile shows something of
};

class MKImageTilePainter {
public:
    /// `world` is drawn where there is no image, and under what is transparent.
    MKImageTilePainter(const MKTileKey& key, int imageSide, const MKTileImages& images, const MKTileSource& world);

    /// The tile is final when nothing of it waits and nothing failed.
    std::shared_ptr<const MKTile> draw() const;

private:
    std::shared_ptr<const MKTile> drawWorldAlone() const;
    bool needsWorld() const;
    void drawWorld(cairo_t* cairo) const;
    void drawPieces(cairo_t* cairo) const;
    /// All pieces, each at its place, in the images' own pixels.
    cairo_surface_t* makeMosaic(const MKImageGrid& grid) const;
    void drawPiece(cairo_t* cairo, const MKTilePiece& piece, const MKImageGrid& grid) const;

    const MKTileKey& _key;
    const int _imageSide;
    const MKTileImages& _images;
    const MKTileSource& _world;
};

} // namespace veyra
