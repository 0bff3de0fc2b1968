#include "Platform/MapKit/ImageTiles/MKImageTilePainter.h"

#include "Platform/MapKit/MKGeometry.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace veyra {

namespace {

/// What rounding leaves: edges that are so near to a whole pixel lie on it.
constexpr double pixelTolerance = 1e-3, scaleTolerance = 1e-9;

/// Makes `surface` the source, with its pixel (0, 0) at (x, y) and its pixels `scale` wide.
void setSource(cairo_t* cairo, cairo_surface_t* surface, double x, double y, double scale) {
    cairo_set_source_surface(cairo, surface, 0, 0);
    cairo_pattern_t* const pattern = cairo_get_source(cairo);
    cairo_matrix_t matrix;
    cairo_matrix_init(&matrix, 1 / scale, 0, 0, 1 / scale, -x / scale, -y / scale);
    cairo_pattern_set_matrix(pattern, &matrix);
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
    const bool isAligned = std::abs(scale - 1) < scaleTolerance && std::abs(x - std::round(x)) < pixelTolerance &&
                           std::abs(y - std::round(y)) < pixelTolerance;
    cairo_pattern_set_filter(pattern, isAligned ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_GOOD);
}

} // namespace

MKImageGrid::MKImageGrid(const MKTileKey& key, int imageSide, int minimumZoom, int maximumZoom)
    : zoom(std::clamp(static_cast<int>(std::lround(std::log2(key.scale * MKWorldSide / imageSide))), minimumZoom,
                      maximumZoom)) {
    const double pixelsAcrossWorld = std::ldexp(imageSide, zoom);
    imagePixel = key.scale * MKWorldSide / pixelsAcrossWorld;
    const double side = MKTileKey::side / imagePixel;
    left = key.column * side;
    top = key.row * side;
    const auto indexAt = [&](double pixel) {
        return std::clamp(static_cast<int>(std::floor(pixel / imageSide)), 0, static_cast<int>((1u << zoom) - 1));
    };
    // Between the pixels of images that are drawn larger or smaller, those of the next image count too.
    const double reach = std::abs(imagePixel - 1) < scaleTolerance ? -pixelTolerance : 0.5;
    firstColumn = indexAt(left - reach);
    firstRow = indexAt(top - reach);
    lastColumn = indexAt(left + side + reach);
    lastRow = indexAt(top + side + reach);
}

MKImageTilePainter::MKImageTilePainter(const MKTileKey& key, int imageSide, const MKTileImages& images,
                                       const MKTileSource& world)
    : _key(key), _imageSide(imageSide), _images(images), _world(world) {}

std::shared_ptr<const MKTile> MKImageTilePainter::draw() const {
    if (_images.pieces.empty()) {
        return drawWorldAlone();
    }
    const bool isFinal = !_images.isWaiting && _images.failure.empty();
    const MKTilePicture::Surface surface = MKTilePicture::makeSurface();
    cairo_t* const cairo = cairo_create(surface.get());
    try {
        drawWorld(cairo);
        drawPieces(cairo);
    } catch (...) {
        cairo_destroy(cairo);
        throw;
    }
    cairo_destroy(cairo);
    return std::make_shared<const MKTile>(
        _key, surface,
        MKTileQuality{.isFinal = isFinal, .coarseness = _images.coarseness, .freshUntil = _images.freshUntil});
}

std::shared_ptr<const MKTile> MKImageTilePainter::drawWorldAlone() const {
    const MKTileQuality quality{.isFinal = !_images.isWaiting && _images.failure.empty(),
                                .coarseness = _images.coarseness,
                                .isWorldAlone = true};
    const auto tile = _world.drawTile(_key);
    return tile->picture() ? std::make_shared<const MKTile>(_key, tile->picture()->surface(), quality)
                           : std::make_shared<const MKTile>(_key, tile->color(), quality);
}

bool MKImageTilePainter::needsWorld() const {
    return !_images.coversAll || std::any_of(_images.pieces.begin(), _images.pieces.end(),
                                             [](const MKTilePiece& piece) { return !piece.image->isOpaque(); });
}

void MKImageTilePainter::drawWorld(cairo_t* cairo) const {
    if (!needsWorld()) {
        return;
    }
    const auto tile = _world.drawTile(_key);
    if (tile->picture()) {
        cairo_set_source_surface(cairo, tile->picture()->surface().get(), 0, 0);
    } else {
        const MKTileColor color = tile->color();
        cairo_set_source_rgb(cairo, (color >> 16 & 255) / 255.0, (color >> 8 & 255) / 255.0, (color & 255) / 255.0);
    }
    cairo_paint(cairo);
}

void MKImageTilePainter::drawPieces(cairo_t* cairo) const {
    const int zoom = _images.pieces.front().place.zoom;
    const MKImageGrid grid(_key, _imageSide, zoom, zoom);
    cairo_surface_t* const mosaic = makeMosaic(grid);
    setSource(cairo, mosaic, (grid.firstColumn * double{1} * _imageSide - grid.left) * grid.imagePixel,
              (grid.firstRow * double{1} * _imageSide - grid.top) * grid.imagePixel, grid.imagePixel);
    cairo_paint(cairo);
    cairo_surface_destroy(mosaic);
}

cairo_surface_t* MKImageTilePainter::makeMosaic(const MKImageGrid& grid) const {
    const int columns = grid.lastColumn - grid.firstColumn + 1, rows = grid.lastRow - grid.firstRow + 1;
    cairo_surface_t* const mosaic = cairo_image_surface_create(needsWorld() ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24,
                                                               columns * _imageSide, rows * _imageSide);
    if (cairo_surface_status(mosaic) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(mosaic);
        throw std::bad_alloc();
    }
    cairo_t* const cairo = cairo_create(mosaic);
    cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
    for (const MKTilePiece& piece : _images.pieces) {
        drawPiece(cairo, piece, grid);
    }
    cairo_destroy(cairo);
    return mosaic;
}

void MKImageTilePainter::drawPiece(cairo_t* cairo, const MKTilePiece& piece, const MKImageGrid& grid) const {
    const int levels = piece.place.zoom - piece.key.zoom;
    // The image covers 2^levels places a side; the place is one of them.
    const double side = std::ldexp(_imageSide, levels);
    const double x = (piece.place.column - grid.firstColumn) * double{1} * _imageSide;
    const double y = (piece.place.row - grid.firstRow) * double{1} * _imageSide;
    const int placesBefore = 1 << levels;
    const double imageX = x - (piece.place.column % placesBefore) * double{1} * _imageSide;
    const double imageY = y - (piece.place.row % placesBefore) * double{1} * _imageSide;
    // Images that are not square are stretched into one.
    cairo_save(cairo);
    cairo_rectangle(cairo, x, y, _imageSide, _imageSide);
    cairo_clip(cairo);
    cairo_translate(cairo, imageX, imageY);
    cairo_scale(cairo, 1, static_cast<double>(piece.image->width()) / piece.image->height());
    setSource(cairo, piece.image->surface(), 0, 0, side / piece.image->width());
    cairo_paint(cairo);
    cairo_restore(cairo);
}

} // namespace veyra
