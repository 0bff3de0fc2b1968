#include "Platform/MapKit/MKOverlayPainter.h"

#include "Platform/MapKit/MKOverlayWorker.h"
#include "Platform/MapKit/MKPathPainter.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace veyra {

namespace {

// A shape may run around the world many times; it is drawn on so many copies at most.
constexpr int mostCopies = 64;
// A picture with much in it is drawn in so many bands, of so many rows at least.
constexpr int bands = MKDrawingTicket::parts, leastRows = 32;

bool meet(const MKPixelBox& a, const MKPixelBox& b) {
    return a.minX < b.maxX && b.minX < a.maxX && a.minY < b.maxY && b.minY < a.maxY;
}

MKPixelBox boxOf(const PixelRect& rect) {
    return {static_cast<double>(rect.x), static_cast<double>(rect.y), static_cast<double>(rect.maxX()),
            static_cast<double>(rect.maxY())};
}

/// A whole number, not too large for an integer.
int whole(double value) {
    return static_cast<int>(std::clamp(value, -1e9, 1e9));
}

/// The pixels that a box touches.
PixelRect pixelsOf(const MKPixelBox& box) {
    const int left = whole(std::floor(box.minX)), top = whole(std::floor(box.minY));
    return {left, top, whole(std::ceil(box.maxX)) - left, whole(std::ceil(box.maxY)) - top};
}

} // namespace

MKPixelBox MKOverlayPainter::boxOf(const MKOverlayFigure& figure, int copy) const {
    const MKPixelView& view = _scene.view;
    const MKMapRect& bounds = figure.bounds();
    const double left = view.worldLeft(copy), scale = view.scale;
    const double reach = MKPathPainter::reachOf(figure.style(), figure.lineWidth(scale, _scene.deviceScale)) + 1;
    return MKPixelBox{MKMapRectGetMinX(bounds) * scale + left, MKMapRectGetMinY(bounds) * scale - view.top,
                      MKMapRectGetMaxX(bounds) * scale + left, MKMapRectGetMaxY(bounds) * scale - view.top}
        .outset(reach);
}

MKOverlayPainter::Copies MKOverlayPainter::copiesOf(const MKOverlayFigure& figure, const MKPixelBox& area) const {
    const MKPixelBox box = boxOf(figure, 0);
    const double world = MKWorldSide * _scene.view.scale;
    // One more on either side makes up for the rounding of the copies' places.
    const double first = std::floor((area.minX - box.maxX) / world), last = std::ceil((area.maxX - box.minX) / world);
    const int from = whole(first);
    return {from, whole(std::min(last, from + static_cast<double>(mostCopies)))};
}

PixelRect MKOverlayPainter::extent() const {
    const PixelRect picture{0, 0, _scene.view.width, _scene.view.height};
    const MKPixelBox area = veyra::boxOf(picture);
    MKPixelBox all{area.maxX, area.maxY, area.minX, area.minY};
    for (const auto& figure : *_scene.figures) {
        const Copies copies = copiesOf(*figure, area);
        for (int copy = copies.first; copy <= copies.last; ++copy) {
            const MKPixelBox box = boxOf(*figure, copy);
            if (meet(box, area)) {
                all = {std::min(all.minX, box.minX), std::min(all.minY, box.minY), std::max(all.maxX, box.maxX),
                       std::max(all.maxY, box.maxY)};
            }
        }
    }
    if (all.minX >= all.maxX) {
        return {};
    }
    return intersection(pixelsOf(all), picture);
}

void MKOverlayPainter::addAreas(const MKOverlayFigure& figure, const PixelRect& area, DamageList& areas) const {
    const Copies copies = copiesOf(figure, veyra::boxOf(area));
    for (int copy = copies.first; copy <= copies.last; ++copy) {
        areas.add(intersection(pixelsOf(boxOf(figure, copy)), area));
    }
}

bool MKOverlayPainter::isMuch(size_t first) const {
    size_t vertices = 0;
    for (size_t i = first; i < _scene.figures->size() && vertices < MKOverlayFigure::muchToDraw; ++i) {
        vertices += (*_scene.figures)[i]->vertexCount();
    }
    return vertices >= MKOverlayFigure::muchToDraw;
}

// Each band is a surface of its own over the rows that are its own.
void MKOverlayPainter::draw(cairo_surface_t* surface, int left, int top, const PixelRect& area, size_t first) const {
    if (area.height < bands * leastRows || !isMuch(first)) {
        drawBand(0, surface, left, top, area, first);
        return;
    }
    cairo_surface_flush(surface);
    unsigned char* const pixels = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    dispatch_apply(bands, MKOverlayWorker::bandQueue(), [&](size_t number) {
        const auto edge = [&](size_t band) { return area.y + static_cast<int>(band) * area.height / bands; };
        const PixelRect band{area.x, edge(number), area.width, edge(number + 1) - edge(number)};
        const std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> rows(
            cairo_image_surface_create_for_data(pixels + static_cast<ptrdiff_t>(band.y - top) * stride,
                                                CAIRO_FORMAT_ARGB32, cairo_image_surface_get_width(surface),
                                                band.height, stride),
            cairo_surface_destroy);
        drawBand(number, rows.get(), left, band.y, band, first);
    });
    cairo_surface_mark_dirty(surface);
}

void MKOverlayPainter::drawBand(size_t band, cairo_surface_t* surface, int left, int top, const PixelRect& area,
                                size_t first) const {
    const MKPixelBox box = veyra::boxOf(area);
    const std::unique_ptr<cairo_t, decltype(&cairo_destroy)> context(cairo_create(surface), cairo_destroy);
    cairo_t* const cairo = context.get();
    if (cairo_status(cairo) != CAIRO_STATUS_SUCCESS) { // nor has the surface any pixels, perhaps
        throw std::bad_alloc();
    }
    cairo_translate(cairo, -left, -top);
    cairo_rectangle(cairo, area.x, area.y, area.width, area.height);
    cairo_clip(cairo);
    MKPathPainter painter(cairo, area, left, top, _ticket);
    MKOutline outline;
    for (size_t i = first; i < _scene.figures->size(); ++i) {
        const MKOverlayFigure& figure = *(*_scene.figures)[i];
        _ticket.begin(band, figure);
        const MKPathStyle& style = figure.style();
        const double width = figure.lineWidth(_scene.view.scale, _scene.deviceScale);
        const Copies copies = copiesOf(figure, box);
        for (int copy = copies.first; copy <= copies.last; ++copy) {
            if (!meet(boxOf(figure, copy), box)) {
                continue;
            }
            outline.clear();
            figure.trace({.scale = _scene.view.scale,
                          .left = _scene.view.worldLeft(copy),
                          .top = -_scene.view.top,
                          .area = box.outset(MKPathPainter::reachOf(style, width) + 2),
                          .wantsLengths = !style.dashes.empty()},
                         outline);
            if (style.fill) {
                painter.fill(outline, *style.fill);
            }
            painter.stroke(outline, style, width, _scene.deviceScale);
        }
    }
    _ticket.end(band);
    if (cairo_status(cairo) != CAIRO_STATUS_SUCCESS) {
        throw std::bad_alloc();
    }
}

} // namespace veyra
