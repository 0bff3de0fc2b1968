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
    cairo_surface_t* const surface = cairo_image_surface_create(
        CAIRO_FORMAT_ARGB32, static_cast<int>(high(text.right) - left), static_cast<int>(high(text.bottom) - top));
    auto art = std::make_unique<const MKLabelArt>(surface, static_cast<int>(left), static_cast<int>(top));
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        throw std::bad_alloc();
    }
    cairo_t* const cairo = cairo_create(surface);
    _writer.draw(cairo, (text.left + text.right) / 2 * key.scale - left, (text.top + text.bottom) / 2 * key.scale - top,
                 key.names->text(name), font, colors, key.scale);
    if (mark.radius > 0) {
        drawMark(cairo, -left, -top, mark, colors, key.scale);
    }
    cairo_destroy(cairo);
    cairo_surface_flush(surface);
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
