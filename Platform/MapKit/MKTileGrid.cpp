#include "Platform/MapKit/MKTileGrid.h"

#include <algorithm>
#include <cmath>

namespace veyra {

MKPixelView::MKPixelView(const MKCamera& camera, CGSize viewSize, double deviceScale)
    : scale(camera.scale * deviceScale), width(static_cast<int>(std::ceil(viewSize.width * deviceScale))),
      height(static_cast<int>(std::ceil(viewSize.height * deviceScale))) {
    const MKMapRect visible = camera.visibleMapRect(viewSize);
    left = std::round(visible.origin.x * scale);
    top = std::round(visible.origin.y * scale);
}

double MKPixelView::worldLeft(int copy) const {
    return std::round(copy * MKWorldSide * scale) - left;
}

int MKPixelView::firstCopy(double fromX) const {
    return static_cast<int>(std::floor((left + fromX) / (MKWorldSide * scale)));
}

int MKPixelView::lastCopy(double toX) const {
    return std::max(firstCopy(toX), firstCopy(toX - 1));
}

int32_t tileColumns(double tileScale) {
    // A last column of less than a hundredth of a pixel is what rounding leaves.
    return static_cast<int32_t>(std::max(1.0, std::ceil((MKWorldSide * tileScale - 0.01) / MKTileKey::side)));
}

namespace {

// To a whole pixel. At the innermost scale the world is wider than an integer; what lies so far off is not in the view.
int rounded(double value) {
    return static_cast<int>(std::lround(std::clamp(value, -1e9, 1e9)));
}

// The tiles of a scale in one copy of the world.
class CopyGrid {
public:
    CopyGrid(double tileScale, const MKPixelView& view, int copy)
        : _top(view.top), _side(MKTileKey::side * (view.scale / tileScale)), _worldLeft(view.worldLeft(copy)),
          _worldEnd(rounded(view.worldLeft(copy + 1))), _lastIndex(tileColumns(tileScale) - 1) {}

    // Edges round by up to half a pixel: a tile may cover pixels next to its exact extent.
    int32_t columnAt(double x) const { return index(x - _worldLeft); }
    int32_t rowAt(double y) const { return index(y + _top); }

    MKPlacedTile place(int32_t column, int32_t row) const {
        const double x = _worldLeft + column * _side, y = row * _side - _top;
        const int left = rounded(x), top = rounded(y);
        const int right = column == _lastIndex ? _worldEnd : rounded(_worldLeft + (column + 1) * _side);
        const int bottom = rounded((row + 1) * _side - _top);
        return {column, row, x, y, {left, top, right - left, bottom - top}};
    }

private:
    int32_t index(double offset) const {
        return static_cast<int32_t>(std::clamp(std::floor(offset / _side), 0.0, static_cast<double>(_lastIndex)));
    }

    const double _top, _side, _worldLeft;
    const int _worldEnd;
    const int32_t _lastIndex;
};

bool meet(const PixelRect& a, const PixelRect& b) {
    return !a.isEmpty() && !b.isEmpty() && a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height &&
           b.y < a.y + a.height;
}

} // namespace

std::vector<MKPlacedTile> tilesInArea(double tileScale, const MKPixelView& view, const PixelRect& area) {
    std::vector<MKPlacedTile> tiles;
    for (int copy = view.firstCopy(area.x - 1); copy <= view.lastCopy(area.x + area.width + 1); ++copy) {
        const CopyGrid grid(tileScale, view, copy);
        const int32_t lastRow = grid.rowAt(area.y + area.height + 1),
                      lastColumn = grid.columnAt(area.x + area.width + 1);
        for (int32_t row = grid.rowAt(area.y - 1); row <= lastRow; ++row) {
            for (int32_t column = grid.columnAt(area.x - 1); column <= lastColumn; ++column) {
                const MKPlacedTile tile = grid.place(column, row);
                if (meet(tile.rect, area)) {
                    tiles.push_back(tile);
                }
            }
        }
    }
    return tiles;
}

std::vector<MKPlacedTile> placesOfTile(const MKTileKey& key, const MKPixelView& view, const PixelRect& area) {
    std::vector<MKPlacedTile> places;
    for (int copy = view.firstCopy(area.x - 1); copy <= view.lastCopy(area.x + area.width + 1); ++copy) {
        const MKPlacedTile tile = CopyGrid(key.scale, view, copy).place(key.column, key.row);
        if (meet(tile.rect, area)) {
            places.push_back(tile);
        }
    }
    return places;
}

} // namespace veyra
