#include "Platform/MapKit/MKLandMask.h"

#include "Platform/MapKit/MKShapeClipper.h"

#include <cairo.h>

#include <algorithm>
#include <new>

namespace veyra {

namespace {

constexpr double bleed = 2; // pixels

} // namespace

MKLandMask::MKLandMask(const BasemapFile& shapes, MKBasemapCells& cells, double originX, double originY, double scale,
                       int side)
    : _side(side), _shares(static_cast<size_t>(side) * static_cast<size_t>(side)) {
    // The finest shapes: they are what the pictures were made with.
    const int level = shapes.levelCount() - 1;
    const auto placed =
        cells.cellsIn(shapes, level, originX - bleed / scale, originY - bleed / scale, (side + 2 * bleed) / scale);
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_A8, side, side);
    cairo_t* cairo = cairo_create(surface);
    const auto fill = [&](BasemapLayer layer, cairo_operator_t op) {
        for (const MKPlacedCell& cell : placed) {
            MKShapeClipper(originX - cell.shift, originY, scale, side, bleed)
                .addAreas(cell.cell->shapes(layer), cell.cell->fillBounds, cairo);
        }
        cairo_set_operator(cairo, op);
        cairo_fill(cairo);
    };
    fill(BasemapLayer::Land, CAIRO_OPERATOR_OVER);
    fill(BasemapLayer::Lakes, CAIRO_OPERATOR_DEST_OUT);
    const bool failed = cairo_status(cairo) != CAIRO_STATUS_SUCCESS;
    cairo_destroy(cairo);
    cairo_surface_flush(surface);
    if (!failed) {
        const auto stride = static_cast<size_t>(cairo_image_surface_get_stride(surface));
        const unsigned char* const bytes = cairo_image_surface_get_data(surface);
        for (size_t y = 0; y < static_cast<size_t>(side); ++y) {
            std::copy_n(bytes + y * stride, side, &_shares[y * static_cast<size_t>(side)]);
        }
    }
    cairo_surface_destroy(surface);
    if (failed) {
        throw std::bad_alloc();
    }
}

} // namespace veyra
