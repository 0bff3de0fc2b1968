// A picture of many sprites that stand at points of the map, the northern ones behind the southern ones, on every
// copy of the world. It is kept in tiles of the scale's own pixels: a map that moves at its scale finds them drawn, and
// a change draws those that it touches; crowds are drawn on several threads. Owned by the map's annotations; main queue
// only.
#pragma once

#include "Platform/MapKit/MKSpriteTile.h"
#include "Platform/MapKit/MKTileGrid.h"
#include "Platform/UIKit/UIView.h"

#include <functional>

typedef union pixman_image pixman_image_t;

namespace veyra {

/// A sprite at a point of the world. `left` and `top` are where its upper left pixel lies from the point's pixel.
struct MKPlacedSprite {
    MKMapPoint point;
    const MKSprite* sprite = nullptr;
    int left = 0, top = 0;
};

class MKSpriteLayer {
public:
    /// What is shown, by latitude from north to south; a null sprite shows nothing. Whoever changes a sprite calls
    /// `invalidate` with it as it was and as it is.
    std::vector<MKPlacedSprite>& sprites() { return _sprites; }
    const std::vector<MKPlacedSprite>& sprites() const { return _sprites; }
    /// Says where on the map the layer's pixels lie. Another scale makes all tiles stale.
    void setView(const MKPixelView& view);
    const MKPixelView& view() const { return _view; }

    void invalidate(const MKPlacedSprite& sprite);
    void invalidateAll();
    /// Calls `place` with the rectangle of the sprite, in the view's pixels, on each copy of the world that shows some
    /// of it.
    void forEachPlace(const MKPlacedSprite& sprite, const std::function<void(const PixelRect&)>& place) const;

    /// Draws what lies in the context's clip.
    void draw(const UIGraphicsContext& context);
    /// Pixels held, in bytes.
    size_t heldBytes() const { return _tiles.size() * MKSpriteTile::side * MKSpriteTile::side * sizeof(uint32_t); }

private:
    struct Tile {
        int64_t column = 0, row = 0; // in tiles of the scale's whole world
        bool isStale = true;
        std::unique_ptr<MKSpriteTile> picture;
    };
    struct TileArea {
        int64_t firstColumn, firstRow, lastColumn, lastRow;
    };
    struct Drawing {
        const MKSprite* sprite;
        int x, y; // in the tile
    };

    TileArea tilesOf(const PixelRect& rect) const;
    Tile* find(int64_t column, int64_t row);
    void forgetFarTiles();
    void bringUpToDate(const TileArea& area);
    void fillLists(const TileArea& area, const std::vector<bool>& wanted);
    void composite(const Tile& tile, pixman_image_t* target, const PixelRect& clip, int originX, int originY) const;

    std::vector<MKPlacedSprite> _sprites;
    MKPixelView _view;
    std::vector<Tile> _tiles;
    std::vector<std::unique_ptr<MKSpriteTile>> _spare;
    std::vector<std::vector<Drawing>> _lists; // of the tiles that are being drawn, kept for their room
};

} // namespace veyra
