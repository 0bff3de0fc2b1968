#include "Platform/MapKit/MKBasemapPainter.h"

#include "Platform/MapKit/MKBasemapStyle.h"
#include "Platform/MapKit/MKGeometry.h"
#include "Platform/MapKit/MKImagery.h"
#include "Platform/MapKit/MKLineMask.h"
#include "Platform/MapKit/MKShapeClipper.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

// Zooms count from a world of 256 pixels, or points.
constexpr double zoomZeroSide = 256;

// Points around a tile whose shapes reach into it: more than half of the widest line.
constexpr double bleedPoints = 4;

void setColor(cairo_t* cairo, MKTileColor color) {
    cairo_set_source_rgb(cairo, (color >> 16 & 255) / 255.0, (color >> 8 & 255) / 255.0, (color & 255) / 255.0);
}

} // namespace

struct MKBasemapPainter::Canvas {
    cairo_surface_t* surface;
    cairo_t* cairo;
    MKLineMask lines;
};

MKBasemapPainter::MKBasemapPainter(const BasemapFile& file, MKBasemapCells& cells, const MKImagery& imagery,
                                   const MKTileKey& key)
    : _file(file), _cellCache(cells), _imagery(imagery), _key(key),
      _style(MKBasemapStyle::forMapType(key.mapType, key.style)),
      _zoom(std::log2(MKWorldSide * key.scale / key.deviceScale / zoomZeroSide)),
      _bleed(bleedPoints * key.deviceScale) {}

std::shared_ptr<const MKTile> MKBasemapPainter::draw() {
    const int level = _file.levelForZoom(std::log2(MKWorldSide * _key.scale / zoomZeroSide));
    const double side = _key.mapSide(), bleed = _bleed / _key.scale;
    _cells = _cellCache.cellsIn(_file, level, _key.column * side - bleed, _key.row * side - bleed, side + 2 * bleed);
    if (MKTileColor color = 0; isPlain(color)) {
        return std::make_shared<const MKTile>(_key, color);
    }
    const MKTilePicture::Surface surface = MKTilePicture::makeSurface();
    Canvas canvas{surface.get(), nullptr, MKLineMask(MKTileKey::side)};
    if (_style.showsPicture) {
        drawPicture(canvas);
        drawInnerBorders(canvas);
    } else {
        drawAreas(canvas);
    }
    drawBorders(canvas);
    cairo_surface_flush(surface.get());
    return std::make_shared<const MKTile>(_key, surface);
}

bool MKBasemapPainter::isPlain(MKTileColor& color) const {
    if (_style.showsPicture) {
        return false;
    }
    color = _cells.empty() ? _style.sea : _style.land;
    return _cells.empty() || isAllLand();
}

// Whether nothing of the cell but land would be drawn.
bool MKBasemapPainter::hasOnlyLand(const BasemapCell& cell) const {
    if (!cell.isAllLand) {
        return false;
    }
    for (size_t layer = 0; layer < basemapLayerCount; ++layer) {
        if (static_cast<BasemapLayer>(layer) != BasemapLayer::Land && !cell.layers[layer].isEmpty()) {
            return false;
        }
    }
    return true;
}

bool MKBasemapPainter::isAllLand() const {
    const double side = _key.mapSide();
    const double minX = _key.column * side, minY = _key.row * side;
    double covered = 0;
    for (const MKPlacedCell& placed : _cells) {
        if (!hasOnlyLand(*placed.cell)) {
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

void MKBasemapPainter::drawPicture(Canvas& canvas) const {
    _imagery.draw(_key, _file, _cellCache, canvas.surface);
}

void MKBasemapPainter::drawAreas(Canvas& canvas) const {
    canvas.cairo = cairo_create(canvas.surface);
    setColor(canvas.cairo, _style.sea);
    cairo_paint(canvas.cairo);
    // Lines lie over the edges of all areas: the faster antialiasing is good enough under them.
    cairo_set_antialias(canvas.cairo, CAIRO_ANTIALIAS_FAST);
    fillAreas(canvas, BasemapLayer::Land, _style.land);
    strokeLines(canvas, {BasemapLayer::SmallRivers}, _style.rivers[3]);
    strokeLines(canvas, {BasemapLayer::MediumRivers}, _style.rivers[2]);
    strokeLines(canvas, {BasemapLayer::LargeRivers}, _style.rivers[1]);
    strokeLines(canvas, {BasemapLayer::GreatRivers}, _style.rivers[0]);
    strokeLines(canvas, {BasemapLayer::Coast}, _style.coast);
    drawInnerBorders(canvas); // which end at the shores of lakes
    fillAreas(canvas, BasemapLayer::Lakes, _style.lake);
    strokeLines(canvas, {BasemapLayer::LakeShore}, _style.lakeShore);
    cairo_destroy(canvas.cairo);
}

void MKBasemapPainter::drawInnerBorders(Canvas& canvas) const {
    strokeLines(canvas, {BasemapLayer::ProvinceLines}, _style.provinces);
    strokeLines(canvas, {BasemapLayer::StateLines}, _style.states);
}

void MKBasemapPainter::drawBorders(Canvas& canvas) const {
    strokeLines(canvas, {BasemapLayer::Borders, BasemapLayer::DisputedBorders}, _style.borderGlow);
    strokeLines(canvas, {BasemapLayer::DisputedBorders}, _style.disputedBorder);
    strokeLines(canvas, {BasemapLayer::Borders}, _style.border);
}

MKShapeClipper MKBasemapPainter::clipperFor(const MKPlacedCell& placed) const {
    return {_key.column * _key.mapSide() - placed.shift, _key.row * _key.mapSide(), _key.scale, MKTileKey::side,
            _bleed};
}

void MKBasemapPainter::fillAreas(Canvas& canvas, BasemapLayer layer, MKTileColor color) const {
    cairo_new_path(canvas.cairo);
    for (const MKPlacedCell& placed : _cells) {
        clipperFor(placed).addAreas(placed.cell->shapes(layer), placed.cell->fillBounds, canvas.cairo);
    }
    setColor(canvas.cairo, color);
    cairo_fill(canvas.cairo);
}

void MKBasemapPainter::strokeLines(Canvas& canvas, std::initializer_list<BasemapLayer> layers,
                                   const MKBasemapLine& look) const {
    const double width = look.widthAt(_zoom);
    if (width <= 0) {
        return;
    }
    canvas.lines.setWidth(width * _key.deviceScale);
    for (const BasemapLayer layer : layers) {
        for (const MKPlacedCell& placed : _cells) {
            const BasemapShapes& shapes = placed.cell->shapes(layer);
            if (look.dash > 0) {
                clipperFor(placed).addDashedLines(shapes, look.dash * _key.deviceScale, look.gap * _key.deviceScale,
                                                  canvas.lines);
            } else {
                clipperFor(placed).addLines(shapes, canvas.lines);
            }
        }
    }
    canvas.lines.paint(canvas.surface, look.color, look.opacity);
}

} // namespace veyra
