// Drawing of the tiles that a layer holds.
#include "Platform/MapKit/MKTileLayer.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

// Tiles of one kind: the same source, map type, scales and coarseness.
struct Generation {
    const MKTile* tile; // its first
    double distance;
};

void setColor(cairo_t* cairo, MKTileColor color) {
    cairo_set_source_rgb(cairo, (color >> 16 & 255) / 255.0, (color >> 8 & 255) / 255.0, (color & 255) / 255.0);
}

} // namespace

// Draws tiles from the best to the worst, each only where nothing better was drawn.
class MKTileLayer::Painter {
public:
    Painter(const MKTileLayer& layer, const UIGraphicsContext& context)
        : _layer(layer), _cairo(context.cairo), _originX(std::lround(context.origin.x * context.scale)),
          _originY(std::lround(context.origin.y * context.scale)), _clip{context.clip.x - _originX,
                                                                         context.clip.y - _originY, context.clip.width,
                                                                         context.clip.height} {
        const cairo_rectangle_int_t clip{_clip.x, _clip.y, _clip.width, _clip.height};
        _uncovered = cairo_region_create_rectangle(&clip);
        cairo_identity_matrix(_cairo);
        cairo_translate(_cairo, _originX, _originY);
        cairo_set_operator(_cairo, CAIRO_OPERATOR_SOURCE);
        cairo_set_antialias(_cairo, CAIRO_ANTIALIAS_NONE);
    }
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;
    ~Painter() { cairo_region_destroy(_uncovered); }

    void drawAll() {
        for (const Generation& generation : generations()) {
            if (cairo_region_is_empty(_uncovered)) {
                return;
            }
            drawGeneration(*generation.tile);
        }
        const MKMapType mapType = _layer._scene->mapType;
        setColor(_cairo, _layer.shownStyle() == UIUserInterfaceStyleDark ? _layer._source->darkBackgroundColor(mapType)
                                                                         : _layer._source->backgroundColor(mapType));
        fill(_uncovered);
    }

private:
    /// The kinds of tiles that are held: the needed ones first, then by how near their scale is.
    std::vector<Generation> generations() const {
        std::vector<Generation> found;
        for (const auto& [key, tile] : _layer._held) {
            const auto sameKind = [&held = *tile](const Generation& generation) {
                return areOneGeneration(held, *generation.tile);
            };
            if (std::none_of(found.begin(), found.end(), sameKind)) {
                found.push_back({tile.get(), distanceTo(*tile)});
            }
        }
        std::sort(found.begin(), found.end(),
                  [](const Generation& a, const Generation& b) { return a.distance < b.distance; });
        return found;
    }

    double distanceTo(const MKTile& tile) const {
        const MKTileKey& key = tile.key();
        const bool sameWorld = key.source == _layer._source->identifier() && key.mapType == _layer._scene->mapType &&
                               key.style == _layer.shownStyle();
        const double levels = std::abs(std::log2(key.scale / _layer._view.scale)) + tile.quality().coarseness;
        return levels + (sameWorld ? 0 : 1000) + (key.deviceScale == _layer._scene->deviceScale ? 0 : 0.25);
    }

    static bool areOneGeneration(const MKTile& a, const MKTile& b) {
        MKTileKey key = b.key();
        key.column = a.key().column;
        key.row = a.key().row;
        return a.key() == key && a.quality().coarseness == b.quality().coarseness;
    }

    void drawGeneration(const MKTile& generation) {
        for (const auto& [key, tile] : _layer._held) {
            if (!areOneGeneration(*tile, generation)) {
                continue;
            }
            for (const MKPlacedTile& placed : placesOfTile(key, _layer._view, _clip)) {
                drawTile(tile, placed);
            }
        }
    }

    void drawTile(const std::shared_ptr<const MKTile>& tile, const MKPlacedTile& placed) {
        const cairo_rectangle_int_t rect{placed.rect.x, placed.rect.y, placed.rect.width, placed.rect.height};
        cairo_region_t* area = cairo_region_copy(_uncovered);
        cairo_region_intersect_rectangle(area, &rect);
        if (!cairo_region_is_empty(area)) {
            setSource(tile, placed);
            fill(area);
            cairo_region_subtract_rectangle(_uncovered, &rect);
        }
        cairo_region_destroy(area);
    }

    void setSource(const std::shared_ptr<const MKTile>& tile, const MKPlacedTile& placed) {
        if (!tile->picture()) {
            setColor(_cairo, tile->color());
            return;
        }
        const double ratio = _layer._view.scale / tile->key().scale;
        cairo_set_source_surface(_cairo, MKTileLoader::shared().surfaceOf(tile).get(), 0, 0);
        cairo_pattern_t* pattern = cairo_get_source(_cairo);
        cairo_matrix_t matrix;
        cairo_matrix_init(&matrix, 1 / ratio, 0, 0, 1 / ratio, -placed.x / ratio, -placed.y / ratio);
        cairo_pattern_set_matrix(pattern, &matrix);
        cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
        cairo_pattern_set_filter(pattern, ratio == 1 ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_BILINEAR);
    }

    void fill(const cairo_region_t* area) {
        for (int i = 0; i < cairo_region_num_rectangles(area); ++i) {
            cairo_rectangle_int_t rect;
            cairo_region_get_rectangle(area, i, &rect);
            cairo_rectangle(_cairo, rect.x, rect.y, rect.width, rect.height);
        }
        cairo_fill(_cairo);
    }

    const MKTileLayer& _layer;
    cairo_t* const _cairo;
    const int _originX, _originY;
    const PixelRect _clip; // in the view's pixels
    cairo_region_t* _uncovered;
};

void MKTileLayer::draw(const UIGraphicsContext& context) const {
    Painter(*this, context).drawAll();
}

} // namespace veyra
