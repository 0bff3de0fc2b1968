#include "Platform/MapKit/MKSpriteLayer.h"

#include "Platform/Foundation/WorkQueue.h"

#include <cairo.h>
#include <pixman.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace veyra {

namespace {

constexpr int side = MKSpriteTile::side;
// The room of a larger crowd's lists is given back after it has been drawn.
constexpr size_t mostKeptDrawings = 30000;
// So many drawings are worth a second thread.
constexpr size_t leastShared = 1000;

int64_t tileIndex(int64_t pixel) {
    return pixel >= 0 ? pixel / side : -((side - 1 - pixel) / side);
}

// The nearest whole pixel of the world, which has no negative ones.
double wholePixel(double pixel) {
    return static_cast<double>(static_cast<int64_t>(pixel + 0.5));
}

// The image that a context draws into. The caller unreferences it and marks the target dirty.
pixman_image_t* imageOf(cairo_surface_t* target) {
    return pixman_image_create_bits_no_clear(
        PIXMAN_x8r8g8b8, cairo_image_surface_get_width(target), cairo_image_surface_get_height(target),
        reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(target)), cairo_image_surface_get_stride(target));
}

} // namespace

void MKSpriteLayer::setView(const MKPixelView& view) {
    const bool sameScale = view.scale == _view.scale;
    _view = view;
    if (!sameScale) {
        invalidateAll();
    }
    forgetFarTiles();
}

void MKSpriteLayer::invalidateAll() {
    for (Tile& tile : _tiles) {
        tile.isStale = true;
    }
}

void MKSpriteLayer::forEachPlace(const MKPlacedSprite& sprite,
                                 const std::function<void(const PixelRect&)>& place) const {
    if (!sprite.sprite || _view.scale <= 0) {
        return;
    }
    const double x = wholePixel(sprite.point.x * _view.scale) + sprite.left;
    const double y = wholePixel(sprite.point.y * _view.scale) - _view.top + sprite.top;
    const int width = sprite.sprite->width(), height = sprite.sprite->height();
    if (y >= _view.height || y + height <= 0) {
        return;
    }
    // A sprite may stand beside the copy that its point lies in.
    for (int copy = _view.firstCopy(0) - 1; copy <= _view.lastCopy(_view.width) + 1; ++copy) {
        const double left = _view.worldLeft(copy) + x;
        if (left < _view.width && left + width > 0) {
            place({static_cast<int>(left), static_cast<int>(y), width, height});
        }
    }
}

void MKSpriteLayer::invalidate(const MKPlacedSprite& sprite) {
    if (!sprite.sprite || _view.scale <= 0) {
        return;
    }
    const double x = wholePixel(sprite.point.x * _view.scale) + sprite.left + _view.left;
    const double y = wholePixel(sprite.point.y * _view.scale) + sprite.top;
    for (Tile& tile : _tiles) {
        const double top = static_cast<double>(tile.row * side) - y;
        if (tile.isStale || top >= sprite.sprite->height() || top <= -side) {
            continue;
        }
        const double tileLeft = static_cast<double>(tile.column * side) - _view.left; // in the view
        for (int copy = _view.firstCopy(tileLeft) - 1; copy <= _view.lastCopy(tileLeft + side) + 1; ++copy) {
            const double left = tileLeft - (_view.worldLeft(copy) + x - _view.left);
            tile.isStale |= left < sprite.sprite->width() && left > -side;
        }
    }
}

MKSpriteLayer::TileArea MKSpriteLayer::tilesOf(const PixelRect& rect) const {
    const auto left = static_cast<int64_t>(_view.left), top = static_cast<int64_t>(_view.top);
    return {tileIndex(left + rect.x), tileIndex(top + rect.y), tileIndex(left + rect.maxX() - 1),
            tileIndex(top + rect.maxY() - 1)};
}

MKSpriteLayer::Tile* MKSpriteLayer::find(int64_t column, int64_t row) {
    for (Tile& tile : _tiles) {
        if (tile.column == column && tile.row == row) {
            return &tile;
        }
    }
    return nullptr;
}

// A margin of a tile is kept for a map that is moved to and fro.
void MKSpriteLayer::forgetFarTiles() {
    const TileArea shown = tilesOf({0, 0, std::max(1, _view.width), std::max(1, _view.height)});
    const auto isFar = [&shown](const Tile& tile) {
        return tile.column < shown.firstColumn - 1 || tile.column > shown.lastColumn + 1 ||
               tile.row < shown.firstRow - 1 || tile.row > shown.lastRow + 1;
    };
    for (Tile& tile : _tiles) {
        if (isFar(tile) && tile.picture) {
            _spare.push_back(std::move(tile.picture));
        }
    }
    std::erase_if(_tiles, isFar);
    _spare.resize(std::min(_spare.size(), _tiles.size() / 2));
}

void MKSpriteLayer::bringUpToDate(const TileArea& area) {
    const auto columns = static_cast<size_t>(area.lastColumn - area.firstColumn + 1);
    const auto rows = static_cast<size_t>(area.lastRow - area.firstRow + 1);
    std::vector<bool> wanted(columns * rows);
    bool any = false;
    for (size_t i = 0; i < wanted.size(); ++i) {
        const int64_t column = area.firstColumn + static_cast<int64_t>(i % columns);
        const int64_t row = area.firstRow + static_cast<int64_t>(i / columns);
        const Tile* const tile = find(column, row);
        if (!tile) {
            _tiles.push_back({.column = column, .row = row, .isStale = true, .picture = nullptr});
        }
        wanted[i] = !tile || tile->isStale;
        any |= wanted[i];
    }
    if (!any) {
        return;
    }
    fillLists(area, wanted);
    std::vector<std::pair<MKSpriteTile*, const std::vector<Drawing>*>> drawn;
    size_t drawings = 0;
    for (size_t i = 0; i < wanted.size(); ++i) {
        if (!wanted[i]) {
            continue;
        }
        Tile& tile = *find(area.firstColumn + static_cast<int64_t>(i % columns),
                           area.firstRow + static_cast<int64_t>(i / columns));
        tile.isStale = false;
        if (_lists[i].empty()) {
            if (tile.picture) {
                _spare.push_back(std::move(tile.picture));
            }
            continue;
        }
        if (!tile.picture && !_spare.empty()) {
            tile.picture = std::move(_spare.back());
            _spare.pop_back();
        }
        if (!tile.picture) {
            tile.picture = std::make_unique<MKSpriteTile>();
        }
        drawn.emplace_back(tile.picture.get(), &_lists[i]);
        drawings += _lists[i].size();
    }
    const auto drawTile = [&drawn](size_t i) {
        const auto& [picture, list] = drawn[i];
        picture->clear();
        for (const Drawing& drawing : *list) {
            picture->drawBehind(*drawing.sprite, drawing.x, drawing.y);
        }
    };
    if (drawings < leastShared) {
        for (size_t i = 0; i < drawn.size(); ++i) {
            drawTile(i);
        }
    } else {
        dispatch_apply(drawn.size(), dispatch_get_global_queue(), drawTile);
    }
    const auto add = [](size_t sum, const std::vector<Drawing>& list) { return sum + list.capacity(); };
    if (std::accumulate(_lists.begin(), _lists.end(), size_t{0}, add) > mostKeptDrawings) {
        _lists = {};
    }
}

// For each wanted tile what meets it, the front ones first.
void MKSpriteLayer::fillLists(const TileArea& area, const std::vector<bool>& wanted) {
    _lists.resize(std::max(_lists.size(), wanted.size()));
    for (auto& list : _lists) {
        list.clear();
    }
    const int64_t columns = area.lastColumn - area.firstColumn + 1;
    const double areaLeft = static_cast<double>(area.firstColumn * side);
    const double areaTop = static_cast<double>(area.firstRow * side);
    const double areaWidth = static_cast<double>(columns * side);
    const double areaHeight = static_cast<double>((area.lastRow - area.firstRow + 1) * side);
    // Where the copies of the world begin in the area.
    std::vector<double> copies;
    for (int copy = _view.firstCopy(areaLeft - _view.left) - 1;
         copy <= _view.lastCopy(areaLeft - _view.left + areaWidth) + 1; ++copy) {
        copies.push_back(_view.worldLeft(copy) + _view.left - areaLeft);
    }
    for (auto placed = _sprites.rbegin(); placed != _sprites.rend(); ++placed) {
        const double y = wholePixel(placed->point.y * _view.scale) - areaTop + placed->top;
        if (!placed->sprite || y >= areaHeight || y + placed->sprite->height() <= 0) {
            continue;
        }
        const double worldX = wholePixel(placed->point.x * _view.scale) + placed->left;
        const int top = static_cast<int>(y);
        const int firstRow = std::max(0, top) / side;
        const int lastRow = (static_cast<int>(std::min(areaHeight, y + placed->sprite->height())) - 1) / side;
        for (const double copy : copies) {
            const double x = copy + worldX;
            if (x >= areaWidth || x + placed->sprite->width() <= 0) {
                continue;
            }
            const int left = static_cast<int>(x);
            const int lastColumn = (static_cast<int>(std::min(areaWidth, x + placed->sprite->width())) - 1) / side;
            for (int row = firstRow; row <= lastRow; ++row) {
                for (int column = std::max(0, left) / side; column <= lastColumn; ++column) {
                    const auto tile = static_cast<size_t>(row * columns + column);
                    if (wanted[tile]) {
                        _lists[tile].push_back({placed->sprite, left - column * side, top - row * side});
                    }
                }
            }
        }
    }
}

void MKSpriteLayer::draw(const UIGraphicsContext& context) {
    if (_sprites.empty() || _view.scale <= 0) {
        return;
    }
    const int originX = static_cast<int>(std::lround(context.origin.x * context.scale));
    const int originY = static_cast<int>(std::lround(context.origin.y * context.scale));
    const PixelRect ownClip{context.clip.x - originX, context.clip.y - originY, context.clip.width,
                            context.clip.height};
    const PixelRect clip = intersection(ownClip, PixelRect{0, 0, _view.width, _view.height});
    if (clip.isEmpty()) {
        return;
    }
    const TileArea area = tilesOf(clip);
    bringUpToDate(area);
    cairo_surface_t* const target = cairo_get_target(context.cairo);
    cairo_surface_flush(target);
    pixman_image_t* const image = imageOf(target);
    for (const Tile& tile : _tiles) {
        if (tile.picture && tile.column >= area.firstColumn && tile.column <= area.lastColumn &&
            tile.row >= area.firstRow && tile.row <= area.lastRow) {
            composite(tile, image, clip, originX, originY);
        }
    }
    pixman_image_unref(image);
    cairo_surface_mark_dirty_rectangle(target, clip.x + originX, clip.y + originY, clip.width, clip.height);
}

void MKSpriteLayer::composite(const Tile& tile, pixman_image_t* target, const PixelRect& clip, int originX,
                              int originY) const {
    // In the view's pixels.
    const int left = static_cast<int>(static_cast<double>(tile.column * side) - _view.left);
    const int top = static_cast<int>(static_cast<double>(tile.row * side) - _view.top);
    const PixelRect& extent = tile.picture->extent();
    const PixelRect drawn = intersection({left + extent.x, top + extent.y, extent.width, extent.height}, clip);
    if (drawn.isEmpty()) {
        return;
    }
    // Pixman reads a source only.
    pixman_image_t* const source = pixman_image_create_bits_no_clear(
        PIXMAN_a8r8g8b8, side, side, const_cast<uint32_t*>(tile.picture->pixels()), side * 4);
    pixman_image_composite32(PIXMAN_OP_OVER, source, nullptr, target, drawn.x - left, drawn.y - top, 0, 0,
                             drawn.x + originX, drawn.y + originY, drawn.width, drawn.height);
    pixman_image_unref(source);
}

} // namespace veyra
