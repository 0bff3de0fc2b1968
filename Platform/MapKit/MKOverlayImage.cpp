#include "Platform/MapKit/MKOverlayImage.h"

#include "Platform/MapKit/MKOverlayPainter.h"

#include <algorithm>
#include <array>
#include <new>

namespace veyra {

namespace {

/// The figures of `all` that come after those of `some`; nothing when `all` does not begin with those.
std::optional<size_t> figuresAfter(const MKOverlayFigures& some, const MKOverlayFigures& all) {
    const bool begins =
        &some == &all || (some.size() <= all.size() && std::equal(some.begin(), some.end(), all.begin()));
    return begins ? std::optional(some.size()) : std::nullopt;
}

/// What of `whole` is outside `part`, which lies in it.
std::array<PixelRect, 4> around(const PixelRect& whole, const PixelRect& part) {
    return {PixelRect{whole.x, whole.y, whole.width, part.y - whole.y},
            PixelRect{whole.x, part.maxY(), whole.width, whole.maxY() - part.maxY()},
            PixelRect{whole.x, part.y, part.x - whole.x, part.height},
            PixelRect{part.maxX(), part.y, whole.maxX() - part.maxX(), part.height}};
}

} // namespace

std::shared_ptr<const MKOverlayImage> MKOverlayImage::draw(const MKOverlayScene& scene, const MKOverlayImage* former) {
    auto image = std::make_shared<MKOverlayImage>(scene);
    MKOverlayPainter painter(image->_scene);
    image->_content = painter.extent();
    if (image->_content.isEmpty()) {
        return image;
    }
    image->makeSurface();
    const auto added = former ? figuresAfter(*former->_scene.figures, *scene.figures) : std::nullopt;
    const PixelRect held = added ? image->takeOver(*former) : PixelRect{};
    const auto draw = [&](const PixelRect& area, size_t first) {
        painter.draw(image->_surface, image->_content.x, image->_content.y, area, first);
    };
    if (held.isEmpty()) {
        draw(image->_content, 0);
    } else {
        if (*added < scene.figures->size()) {
            draw(held, *added);
        }
        for (const PixelRect& strip : around(image->_content, held)) {
            if (!strip.isEmpty()) {
                draw(strip, 0);
            }
        }
    }
    cairo_surface_flush(image->_surface);
    return image;
}

void MKOverlayImage::makeSurface() {
    _surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, _content.width, _content.height);
    if (cairo_surface_status(_surface) != CAIRO_STATUS_SUCCESS) {
        throw std::bad_alloc();
    }
}

/// Copies what another picture at the same scale holds; returns the part of the content that is complete then, but for
/// figures that were added since.
PixelRect MKOverlayImage::takeOver(const MKOverlayImage& former) {
    const MKPixelView &here = _scene.view, &there = former._scene.view;
    if (here.scale != there.scale || _scene.deviceScale != former._scene.deviceScale) {
        return {};
    }
    const double dx = there.left - here.left, dy = there.top - here.top;
    if (!(std::abs(dx) < here.width + there.width && std::abs(dy) < here.height + there.height)) {
        return {};
    }
    const int x = static_cast<int>(dx), y = static_cast<int>(dy);
    const PixelRect held = intersection({x, y, there.width, there.height}, _content);
    if (held.isEmpty()) {
        return {};
    }
    if (former._surface) {
        cairo_t* const cairo = cairo_create(_surface);
        cairo_translate(cairo, -_content.x, -_content.y);
        cairo_set_operator(cairo, CAIRO_OPERATOR_SOURCE);
        cairo_set_source_surface(cairo, former._surface, x + former._content.x, y + former._content.y);
        cairo_pattern_set_filter(cairo_get_source(cairo), CAIRO_FILTER_NEAREST);
        const PixelRect copied = intersection(
            {x + former._content.x, y + former._content.y, former._content.width, former._content.height}, held);
        cairo_rectangle(cairo, copied.x, copied.y, copied.width, copied.height);
        cairo_fill(cairo);
        cairo_destroy(cairo);
    }
    return held;
}

} // namespace veyra
