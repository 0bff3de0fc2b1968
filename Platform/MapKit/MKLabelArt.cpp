#include "Platform/MapKit/MKLabelArt.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>

namespace veyra {

namespace {

void setColor(cairo_t* cairo, MKTileColor color, double opacity) {
    cairo_set_source_rgba(cairo, (color >> 16 & 255) / 255.0, (color >> 8 & 255) / 255.0, (color & 255) / 255.0,
                          opacity);
}

void disc(cairo_t* cairo, double x, double y, double radius) {
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, x, y, radius, 0, 2 * std::numbers::pi);
}

void drawMark(cairo_t* cairo, double x, double y, const MKLabelMark& mark, const MKLabelColors& colors, double scale) {
    const double radius = mark.radius * scale;
    setColor(cairo, colors.halo, 1);
    disc(cairo, x, y, radius + 0.9 * scale);
    cairo_fill(cairo);
    setColor(cairo, colors.text, 1);
    disc(cairo, x, y, radius);
    cairo_fill(cairo);
    if (mark.isCapital) {
        setColor(cairo, colors.halo, 1);
        disc(cairo, x, y, radius - 0.9 * scale);
        cairo_fill(cairo);
        setColor(cairo, colors.text, 1);
        disc(cairo, x, y, radius - 1.8 * scale);
        cairo_fill(cairo);
    }
}

// The part of a picture (ARGB32) that is not empty; of an empty one a corner.
PixelRect inkOf(cairo_surface_t* surface) {
    const int width = cairo_image_surface_get_width(surface), height = cairo_image_surface_get_height(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    const unsigned char* const bytes = cairo_image_surface_get_data(surface);
    int left = width, right = 0, top = height, bottom = 0;
    for (int y = 0; y < height; ++y) {
        const auto* const row = reinterpret_cast<const uint32_t*>(bytes + static_cast<ptrdiff_t>(y) * stride);
        const uint32_t* const first = std::find_if(row, row + width, [](uint32_t pixel) { return pixel != 0; });
        if (first == row + width) {
            continue;
        }
        int end = width;
        while (row[end - 1] == 0) {
            --end;
        }
        left = std::min(left, static_cast<int>(first - row));
        right = std::max(right, end);
        top = std::min(top, y);
        bottom = y + 1;
    }
    return bottom > 0 ? PixelRect{left, top, right - left, bottom - top} : PixelRect{0, 0, 1, 1};
}

cairo_surface_t* copyOf(cairo_surface_t* surface, const PixelRect& part) {
    cairo_surface_t* const copy = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, part.width, part.height);
    cairo_t* const cairo = cairo_create(copy);
    cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(cairo, surface, -part.x, -part.y);
    cairo_paint(cairo);
    cairo_destroy(cairo);
    cairo_surface_flush(copy);
    return copy;
}

} // namespace

PixelRect MKLabelArt::placedAt(int x, int y) const {
    return {x + _left, y + _top, cairo_image_surface_get_width(_surface), cairo_image_surface_get_height(_surface)};
}

size_t MKLabelArt::byteSize() const {
    return sizeof(MKLabelArt) + static_cast<size_t>(cairo_image_surface_get_stride(_surface)) *
                                    static_cast<size_t>(cairo_image_surface_get_height(_surface));
}

MKLabelArtCache& MKLabelArtCache::shared() {
    static auto* const cache = new MKLabelArtCache;
    return *cache;
}

size_t MKLabelArtCache::Hash::operator()(const MKLabelArtKey& key) const noexcept {
    size_t value = std::hash<const void*>()(key.names) * 31 + key.index;
    value = value * 1000003 + std::hash<double>()(key.scale);
    return value * 1000003 + key.step * 16 + key.mapType * 4 + key.style;
}

const MKLabelArt* MKLabelArtCache::find(const MKLabelArtKey& key) {
    const auto found = _entries.find(key);
    if (found == _entries.end()) {
        return nullptr;
    }
    _order.splice(_order.begin(), _order, found->second);
    found->second->lastUse = ++_useCount;
    return found->second->art.get();
}

const MKLabelArt* MKLabelArtCache::draw(const MKLabelArtKey& key, const MKSettledLabel& label) {
    const BasemapName& name = key.names->all()[key.index];
    const MKLabelFont font = MKLabelFont::forName(name, key.step);
    const MKLabelMark mark = MKLabelMark::forName(name, key.step);
    const MKLabelColors colors = MKLabelColors::forName(name, key.mapType, key.style);
    const MKLabelBox& text = label.text[key.step];
    // Letters reach beyond their box here and there; the halo does everywhere.
    const double around = colors.haloWidth + 3;
    const auto low = [&](double edge) { return std::floor((std::min(edge, -mark.radius) - around) * key.scale); };
    const auto high = [&](double edge) { return std::ceil((std::max(edge, mark.radius) + around) * key.scale); };
    const double left = low(text.left), top = low(text.top);
    const std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface(
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(high(text.right) - left),
                                   static_cast<int>(high(text.bottom) - top)),
        &cairo_surface_destroy);
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) {
        throw std::bad_alloc();
    }
    cairo_t* const cairo = cairo_create(surface.get());
    _writer.draw(cairo, (text.left + text.right) / 2 * key.scale - left, (text.top + text.bottom) / 2 * key.scale - top,
                 key.names->text(name), font, colors, key.scale);
    if (mark.radius > 0) {
        drawMark(cairo, -left, -top, mark, colors, key.scale);
    }
    cairo_destroy(cairo);
    cairo_surface_flush(surface.get());
    // Every frame puts it on the map: no larger than need be.
    const PixelRect ink = inkOf(surface.get());
    auto art = std::make_unique<const MKLabelArt>(copyOf(surface.get(), ink), static_cast<int>(left) + ink.x,
                                                  static_cast<int>(top) + ink.y);
    if (cairo_surface_status(art->surface()) != CAIRO_STATUS_SUCCESS) {
        throw std::bad_alloc();
    }
    _byteSize += art->byteSize();
    _order.push_front({key, std::move(art), ++_useCount});
    _entries[key] = _order.begin();
    return _order.front().art.get();
}

void MKLabelArtCache::trim(uint64_t useCount) {
    while (_byteSize > byteLimit && _order.back().lastUse <= useCount) {
        _byteSize -= _order.back().art->byteSize();
        _entries.erase(_order.back().key);
        _order.pop_back();
    }
}

} // namespace veyra
