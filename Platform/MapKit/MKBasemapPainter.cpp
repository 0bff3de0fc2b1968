#include "Platform/MapKit/MKBasemapPainter.h"

#include "Platform/MapKit/MKBasemapStyle.h"
#include "Platform/MapKit/MKGeometry.h"
#include "Platform/MapKit/MKLineMask.h"
#include "Platform/MapKit/MKShapeClipper.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace veyra {

namespace {

// The base map's zoom counts from a world of 256 pixels.
constexpr double zoomZeroSide = 256;

void setColor(cairo_t* cairo, MKTileColor color) {
    cairo_set_source_rgb(cairo, (color >> 16 & 255) / 255.0, (color >> 8 & 255) / 255.0, (color & 255) / 255.0);
}

} // namespace

struct MKBasemapPainter::Canvas {
    cairo_surface_t* surface;
    cairo_t* cairo;
    MKLineMask lines;
};

MKBasemapPainter::MKBasemapPainter(const BasemapFile& file, MKBasemapCells& cells, const MKTileKey& key)
    : _file(file), _cellCache(cells), _key(key), _style(MKBasemapStyle::forMapType(key.mapType)),
      _bleed(2 * key.deviceScale) {}

std::shared_ptr<const MKTile> MKBasemapPainter::draw() {
    collectCells();
    if (_cells.empty()) {
        return std::make_shared<const MKTile>(_key, _style.sea);
    }
    if (isAllLand()) {
        return std::make_shared<const MKTile>(_key, _style.land);
    }
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, MKTileKey::side, MKTileKey::side);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        throw std::bad_alloc();
    }
    auto tile = std::make_shared<const MKTile>(_key, surface);
    Canvas canvas{surface, cairo_create(surface), MKLineMask(MKTileKey::side)};
    setColor(canvas.cairo, _style.sea);
    cairo_paint(canvas.cairo);
    // Lines lie over the edges of all areas: the faster antialiasing is good enough under them.
    cairo_set_antialias(canvas.cairo, CAIRO_ANTIALIAS_FAST);
    fillAreas(canvas, BasemapLayer::Land, _style.land);
    strokeLines(canvas, BasemapLayer::Coast, _style.coast, _style.coastWidth);
    fillAreas(canvas, BasemapLayer::Lakes, _style.lake);
    strokeLines(canvas, BasemapLayer::LakeShore, _style.lakeShore, _style.lakeShoreWidth);
    strokeLines(canvas, BasemapLayer::Borders, _style.border, _style.borderWidth);
    cairo_destroy(canvas.cairo);
    cairo_surface_flush(surface);
    return tile;
}

void MKBasemapPainter::collectCells() {
    const int level = _file.levelForZoom(std::log2(MKWorldSide * _key.scale / zoomZeroSide));
    const double side = _key.mapSide();
    const double bleed = _bleed / _key.scale;
    const double minX = _key.column * side - bleed, maxX = (_key.column + 1) * side + bleed;
    const double minY = _key.row * side - bleed, maxY = (_key.row + 1) * side + bleed;
    const int firstCopy = static_cast<int>(std::floor(minX / MKWorldSide));
    const int lastCopy = static_cast<int>(std::floor(maxX / MKWorldSide));
    for (int copy = firstCopy; copy <= lastCopy; ++copy) {
        const double shift = copy * MKWorldSide;
        for (const BasemapCellId id : _file.cellsMeeting(level, minX - shift, minY, maxX - shift, maxY)) {
            _cells.push_back({_cellCache.cell(_file, id), shift});
        }
    }
}

bool MKBasemapPainter::isAllLand() const {
    const double side = _key.mapSide();
    const double minX = _key.column * side, minY = _key.row * side;
    double covered = 0;
    for (const PlacedCell& placed : _cells) {
        for (const BasemapShapes& shapes : placed.cell->layers) {
            if (&shapes != &placed.cell->shapes(BasemapLayer::Land) && !shapes.isEmpty()) {
                return false;
            }
        }
        if (!placed.cell->isAllLand) {
            return false;
        }
        const BasemapBounds& bounds = placed.cell->bounds;
        const double width =
            std::min(bounds.maxX + placed.shift, minX + side) - std::max(bounds.minX + placed.shift, minX);
        const double height = std::min<double>(bounds.maxY, minY + side) - std::max<double>(bounds.minY, minY);
        covered += std::max(width, 0.0) * std::max(height, 0.0);
    }
    return covered > side * side * (1 - 1e-9);
}

MKShapeClipper MKBasemapPainter::clipperFor(const PlacedCell& placed) const {
    return {_key.column * _key.mapSide() - placed.shift, _key.row * _key.mapSide(), _key.scale, MKTileKey::side,
            _bleed};
}

void MKBasemapPainter::fillAreas(Canvas& canvas, BasemapLayer layer, MKTileColor color) const {
    cairo_new_path(canvas.cairo);
    for (const PlacedCell& placed : _cells) {
        clipperFor(placed).addAreas(placed.cell->shapes(layer), placed.cell->fillBounds, canvas.cairo);
    }
    setColor(canvas.cairo, color);
    cairo_fill(canvas.cairo);
}

void MKBasemapPainter::strokeLines(Canvas& canvas, BasemapLayer layer, MKTileColor color, double width) const {
    canvas.lines.setWidth(width * _key.deviceScale);
    for (const PlacedCell& placed : _cells) {
        clipperFor(placed).addLines(placed.cell->shapes(layer), canvas.lines);
    }
    canvas.lines.paint(canvas.surface, color);
}

} // namespace veyra
