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

} // namespace

std::vector<MKPlacedTile> tilesInArea(double tileScale, const MKPixelView& view, const PixelRect& area) {
    const double side = MKTileKey::side * (view.scale / tileScale);
    const int32_t lastIndex = tileColumns(tileScale) - 1;
    const auto index = [&](double offset) {
        return static_cast<int32_t>(std::clamp(std::floor(offset / side), 0.0, static_cast<double>(lastIndex)));
    };
    // Edges round by up to half a pixel: a tile may cover pixels next to its exact extent.
    const int32_t firstRow = index(area.y + view.top - 1);
    const int32_t lastRow = index(area.y + area.height + view.top + 1);

    std::vector<MKPlacedTile> tiles;
    for (int copy = view.firstCopy(area.x - 1); copy <= view.lastCopy(area.x + area.width + 1); ++copy) {
        const double worldLeft = view.worldLeft(copy);
        const int worldEnd = rounded(view.worldLeft(copy + 1));
        const int32_t firstColumn = index(area.x - worldLeft - 1);
        const int32_t lastColumn = index(area.x + area.width - worldLeft + 1);
        for (int32_t row = firstRow; row <= lastRow; ++row) {
            for (int32_t column = firstColumn; column <= lastColumn; ++column) {
                MKPlacedTile tile{column, row, worldLeft + column * side, row * side - view.top, {}};
                const int x = rounded(tile.x), y = rounded(tile.y);
                const int right = column == lastIndex ? worldEnd : rounded(worldLeft + (column + 1) * side);
                const int bottom = rounded((row + 1) * side - view.top);
                tile.rect = {x, y, right - x, bottom - y};
                const bool meets = tile.rect.x < area.x + area.width && right > area.x &&
                                   tile.rect.y < area.y + area.height && bottom > area.y && !tile.rect.isEmpty();
                if (meets) {
                    tiles.push_back(tile);
                }
            }
        }
    }
    return tiles;
}

} // namespace veyra
