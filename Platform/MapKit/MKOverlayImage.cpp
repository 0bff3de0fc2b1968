#include "Platform/MapKit/MKOverlayImage.h"

#include "Platform/MapKit/MKOverlayChanges.h"
#include "Platform/MapKit/MKOverlayPainter.h"

#include <array>
#include <cmath>
#include <new>

namespace veyra {

namespace {

// The share of a picture that may have changed, beyond which all of it is drawn anew.
constexpr double mostChanged = 0.75;

/// What of `whole` is outside `part`, which lies in it.
std::array<PixelRect, 4> around(const PixelRect& whole, const PixelRect& part) {
    return {PixelRect{whole.x, whole.y, whole.width, part.y - whole.y},
            PixelRect{whole.x, part.maxY(), whole.width, whole.maxY() - part.maxY()},
            PixelRect{whole.x, part.y, part.x - whole.x, part.height},
            PixelRect{part.maxX(), part.y, whole.maxX() - part.maxX(), part.height}};
}

} // namespace

std::shared_ptr<const MKOverlayImage> MKOverlayImage::draw(const MKOverlayScene& scene, const MKOverlayImage* former,
                                                           MKDrawingTicket& ticket) {
    auto image = std::make_shared<MKOverlayImage>(scene);
    MKOverlayPainter painter(image->_scene, ticket);
    image->_content = painter.extent();
    if (image->_content.isEmpty()) {
        return image;
    }
    image->makeSurface();
    const auto draw = [&](const PixelRect& area) {
        painter.draw(image->_surface, image->_content.x, image->_content.y, area, 0);
    };
    const PixelRect held = former ? intersection(image->placeOf(*former), image->_content) : PixelRect{};
    if (held.isEmpty() || !image->takeOver(*former, held, painter)) {
        draw(image->_content);
    } else {
        for (const PixelRect& strip : around(image->_content, held)) {
            if (!strip.isEmpty()) {
                draw(strip);
            }
        }
    }
    cairo_surface_flush(image->_surface);
    return image;
}

/// Completes the picture in `held`, the part of its content that another picture shows too, with what that one holds;
/// false when so much has changed since that it is less work to draw all anew.
bool MKOverlayImage::takeOver(const MKOverlayImage& former, const PixelRect& held, MKOverlayPainter& painter) {
    const auto differences = MKOverlayChanges::between(*former._scene.figures, *_scene.figures);
    const PixelRect shared = placeOf(former);
    DamageList damage;
    for (const MKOverlayFigure* figure : differences.figures) {
        painter.addAreas(*figure, shared, damage);
    }
    std::vector<PixelRect> areas = damage.take();
    int64_t changed = 0;
    for (const PixelRect& area : areas) {
        changed += intersection(area, held).area();
    }
    if (!differences.areOnTop && static_cast<double>(changed) > mostChanged * static_cast<double>(held.area())) {
        return false;
    }
    copy(former, held);
    for (const PixelRect& area : areas) {
        const PixelRect part = intersection(area, held);
        if (part.isEmpty()) {
            continue;
        }
        if (!differences.areOnTop) {
            clear(part);
        }
        painter.draw(_surface, _content.x, _content.y, part, differences.areOnTop ? differences.firstOnTop : 0);
    }
    _former = &former;
    _changes = std::move(areas);
    return true;
}

void MKOverlayImage::clear(const PixelRect& area) {
    cairo_t* const cairo = cairo_create(_surface);
    cairo_set_operator(cairo, CAIRO_OPERATOR_CLEAR);
    cairo_rectangle(cairo, area.x - _content.x, area.y - _content.y, area.width, area.height);
    cairo_fill(cairo);
    cairo_destroy(cairo);
}

void MKOverlayImage::makeSurface() {
    _surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, _content.width, _content.height);
    if (cairo_surface_status(_surface) != CAIRO_STATUS_SUCCESS) {
        throw std::bad_alloc();
    }
}

/// Where in this picture another one lies, within this one; empty when it is nowhere, or of another scale.
PixelRect MKOverlayImage::placeOf(const MKOverlayImage& other) const {
    const MKPixelView &here = _scene.view, &there = other._scene.view;
    if (here.scale != there.scale || _scene.deviceScale != other._scene.deviceScale) {
        return {};
    }
    const double dx = there.left - here.left, dy = there.top - here.top;
    if (!(std::abs(dx) < here.width + there.width && std::abs(dy) < here.height + there.height)) {
        return {};
    }
    return intersection(PixelRect{static_cast<int>(dx), static_cast<int>(dy), there.width, there.height},
                        PixelRect{0, 0, here.width, here.height});
}

void MKOverlayImage::copy(const MKOverlayImage& former, const PixelRect& held) {
    if (!former._surface) {
        return;
    }
    const int x = static_cast<int>(former._scene.view.left - _scene.view.left) + former._content.x;
    const int y = static_cast<int>(former._scene.view.top - _scene.view.top) + former._content.y;
    const PixelRect copied = intersection({x, y, former._content.width, former._content.height}, held);
    cairo_t* const cairo = cairo_create(_surface);
    cairo_translate(cairo, -_content.x, -_content.y);
    cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(cairo, former._surface, x, y);
    cairo_pattern_set_filter(cairo_get_source(cairo), CAIRO_FILTER_NEAREST);
    cairo_rectangle(cairo, copied.x, copied.y, copied.width, copied.height);
    cairo_fill(cairo);
    cairo_destroy(cairo);
}

} // namespace veyra
