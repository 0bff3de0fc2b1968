// How annotations are drawn: sprites in the order of their latitude, kept in a layer, and in front of it what is
// selected or dragged.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/MKAnnotationContainerView.h"
#include "Platform/MapKit/MKCalloutView.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/MapKit/MKUserLocationView.h"
#include "Platform/UIKit/UIWindow.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace veyra {

namespace {

// More changes than this before a frame are drawn as one: the whole view.
constexpr unsigned mostDamages = 100;
// A pin whose fall has not been drawn for so long is put down: its window is hidden. Seconds.
constexpr double longestPause = 1;

// Of a larger batch the rest does not fall: nobody can follow it, and every frame would have to.
constexpr size_t mostDrops = 100000;

// A falling pin begins so far above the map's upper edge, in points: it is not seen at first.
constexpr double heightAboveMap = 4;

uint64_t orderKey(MKMapPoint point, uint32_t number) {
    // The world's 2^28 map points in sixteenths.
    const double latitude = std::clamp(point.y * 16, 0.0, 4294967295.0);
    return static_cast<uint64_t>(latitude) << 32 | number;
}

/// Adds what a disc around `middle` shows of a circle that does not cover it: of a far larger circle, a piece that
/// looks the same there.
void addCircleNear(cairo_t* cairo, CGPoint center, double radius, CGPoint middle, double reach) {
    const double distance = std::hypot(middle.x - center.x, middle.y - center.y);
    if (distance > radius + reach) {
        return;
    }
    if (radius < 8 * reach) {
        cairo_arc(cairo, center.x, center.y, radius, 0, 2 * M_PI);
        return;
    }
    const double angle = std::atan2(middle.y - center.y, middle.x - center.x);
    const double half = std::asin(reach / distance), inner = distance - reach;
    cairo_arc(cairo, center.x, center.y, radius, angle - half, angle + half);
    cairo_line_to(cairo, center.x + inner * std::cos(angle + half), center.y + inner * std::sin(angle + half));
    cairo_line_to(cairo, center.x + inner * std::cos(angle - half), center.y + inner * std::sin(angle - half));
    cairo_close_path(cairo);
}

} // namespace

double MKAnnotationContainerView::deviceScale() const {
    const auto window = this->window();
    return window ? window->scale() : 1;
}

bool MKAnnotationContainerView::isInFront(uint32_t number) const {
    return number == _selected || number == _dragged;
}

MKPlacedSprite MKAnnotationContainerView::placedSprite(uint32_t number, double scale) {
    const MKAnnotationStore::Entry& entry = _store[number];
    MKAnnotationView& view = *entry.view;
    if (entry.waitsToDrop) {
        return {};
    }
    const MKSprite* const sprite = view.sprite(_spriteCache);
    if (!sprite) {
        return {};
    }
    const CGPoint corner = view.extent().origin;
    const double farthest = 1e6; // an offset beyond leads out of every view
    const auto pixels = [&](double points) {
        return static_cast<int>(std::lround(std::clamp(points * scale, -farthest, farthest)));
    };
    return {_store.pointOf(number), sprite, pixels(corner.x) + sprite->originX(),
            pixels(corner.y) + sprite->originY() - pixels(_store.liftOf(number))};
}

void MKAnnotationContainerView::addToOrder(uint32_t number) {
    if (!_store[number].isNewInOrder) {
        _store[number].isNewInOrder = true;
        _newInOrder.push_back(number);
    }
    _orderIsStale |= !_holdsBackNew;
}

void MKAnnotationContainerView::updateOrder() {
    if (!_orderIsStale) {
        return;
    }
    _orderIsStale = false;
    _spritesAreStale = true;
    std::erase_if(_order, [this](uint64_t key) {
        const MKAnnotationStore::Entry& entry = _store[static_cast<uint32_t>(key)];
        return !entry.view || entry.isNewInOrder;
    });
    std::vector<uint64_t> added;
    for (const uint32_t number : std::exchange(_newInOrder, {})) {
        _store[number].isNewInOrder = false;
        if (_store[number].view) {
            added.push_back(orderKey(_store.pointOf(number), number));
        }
    }
    if (added.empty()) {
        return;
    }
    std::sort(added.begin(), added.end());
    std::vector<uint64_t> merged(_order.size() + added.size());
    std::merge(_order.begin(), _order.end(), added.begin(), added.end(), merged.begin());
    _order = std::move(merged);
}

void MKAnnotationContainerView::useScale(double scale) {
    if (scale == _spriteCache.deviceScale()) {
        return;
    }
    const auto forget = [this](uint32_t number) {
        if (const auto& view = _store[number].view) {
            view->forgetSprite();
        }
    };
    for (const uint64_t key : _order) {
        forget(static_cast<uint32_t>(key));
    }
    std::ranges::for_each(_newInOrder, forget);
    _spriteCache.setDeviceScale(scale);
    _spritesAreStale = true;
    _layer.invalidateAll();
}

void MKAnnotationContainerView::updateSprites() {
    const double scale = deviceScale();
    useScale(scale);
    updateOrder();
    if (!_spritesAreStale) {
        return;
    }
    _spritesAreStale = false;
    auto& sprites = _layer.sprites();
    if (sprites.capacity() < _order.size() || sprites.capacity() / 4 > _order.size()) {
        sprites = std::vector<MKPlacedSprite>();
        sprites.reserve(_order.size() + _order.size() / 16); // no more: there may be a million
    }
    sprites.resize(_order.size());
    for (size_t i = 0; i < _order.size(); ++i) {
        const auto number = static_cast<uint32_t>(_order[i]);
        _store[number].position = static_cast<uint32_t>(i);
        sprites[i] = isInFront(number) ? MKPlacedSprite() : placedSprite(number, scale);
    }
}

// Called with a change of one view before and after it. What is drawn of it is taken from the view, not from the list,
// which may lag behind.
void MKAnnotationContainerView::damage(uint32_t number) {
    const double scale = deviceScale();
    useScale(scale);
    if (!_spritesAreStale && !_orderIsStale) {
        // The list follows one change at once, without being made anew.
        const uint32_t position = _store[number].position;
        if (position < _order.size() && static_cast<uint32_t>(_order[position]) == number) {
            _layer.sprites()[position] = isInFront(number) ? MKPlacedSprite() : placedSprite(number, scale);
        }
    }
    if (++_damagesSinceFrame > mostDamages) {
        if (_damagesSinceFrame == mostDamages + 1) {
            setNeedsDisplay();
        }
        return;
    }
    const MKPlacedSprite placed = placedSprite(number, scale);
    if (!isInFront(number)) {
        _layer.invalidate(placed);
    }
    _layer.forEachPlace(placed, [this](const PixelRect& rect) { setNeedsDisplayInRect(pointsOf(rect)); });
    const auto location = _locationView.lock();
    if ((location && location == _store[number].view) || number == _focus.number) {
        setNeedsDisplay(); // the circle and the ring reach beyond the view
    }
}

CGRect MKAnnotationContainerView::pointsOf(const PixelRect& rect) const {
    const double scale = deviceScale();
    return {{rect.x / scale, rect.y / scale}, {rect.width / scale, rect.height / scale}};
}

void MKAnnotationContainerView::drawRect(const UIGraphicsContext& context) {
    const auto map = _map.lock();
    if (!map || !map->hasLayout()) {
        return;
    }
    if (_damagesSinceFrame > mostDamages) {
        _layer.invalidateAll();
    }
    _damagesSinceFrame = 0;
    updateSprites();
    _layer.setView(MKPixelView(map->_camera, map->_viewSize, context.scale));
    drawAccuracy(context);
    _layer.draw(context);
    if (_selected != none && _selected != _dragged) {
        drawInFront(context, _selected);
    }
    if (_dragged != none) {
        drawInFront(context, _dragged);
    }
    drawFocus(context);
}

void MKAnnotationContainerView::drawInFront(const UIGraphicsContext& context, uint32_t number) {
    if (!_store[number].view) {
        return;
    }
    const MKPlacedSprite placed = placedSprite(number, deviceScale());
    const double originX = std::round(context.origin.x * context.scale);
    const double originY = std::round(context.origin.y * context.scale);
    _layer.forEachPlace(placed, [&](const PixelRect& rect) {
        const MKSprite& sprite = *placed.sprite;
        auto* const bytes = reinterpret_cast<unsigned char*>(const_cast<uint32_t*>(sprite.row(0)));
        cairo_surface_t* const source = cairo_image_surface_create_for_data(bytes, CAIRO_FORMAT_ARGB32, sprite.width(),
                                                                            sprite.height(), sprite.width() * 4);
        cairo_identity_matrix(context.cairo);
        cairo_set_source_surface(context.cairo, source, originX + rect.x, originY + rect.y);
        cairo_paint(context.cairo);
        cairo_set_source_rgb(context.cairo, 0, 0, 0);
        cairo_surface_destroy(source);
    });
}

// The circle lies under all views, its radius true to the ground.
void MKAnnotationContainerView::drawAccuracy(const UIGraphicsContext& context) {
    const auto map = _map.lock();
    const auto view = _locationView.lock();
    if (!view || !entryOf(*view) || !view->showsAccuracy()) {
        return;
    }
    const double radius = view->accuracyInMapPoints() * map->_camera.scale;
    const CGPoint center = map->_camera.pointFor(_store.pointOf(_store.find(view->annotation().get())), map->_viewSize);
    const double world = MKWorldSide * map->_camera.scale;
    // The disc around the view, with room for the line.
    const CGPoint middle{map->_viewSize.width / 2, map->_viewSize.height / 2};
    const double reach = std::hypot(middle.x, middle.y) + 2;
    cairo_new_path(context.cairo);
    const double nearest = std::remainder(center.x - middle.x, world);
    if (radius > std::hypot(nearest, center.y - middle.y) + reach) {
        cairo_rectangle(context.cairo, 0, 0, map->_viewSize.width, map->_viewSize.height);
        cairo_set_source_rgba(context.cairo, 0.1, 0.47, 1, 0.14);
        cairo_fill(context.cairo);
        return;
    }
    const double first = center.x - std::floor((center.x + radius) / world) * world;
    for (double x = first; x - radius < map->_viewSize.width; x += world) {
        addCircleNear(context.cairo, {x, center.y}, radius, middle, reach);
        cairo_set_source_rgba(context.cairo, 0.1, 0.47, 1, 0.14);
        cairo_fill_preserve(context.cairo);
        cairo_set_source_rgba(context.cairo, 0.1, 0.47, 1, 0.45);
        cairo_set_line_width(context.cairo, 1);
        cairo_stroke(context.cairo);
    }
}

void MKAnnotationContainerView::annotationViewWillChangeLook(MKAnnotationView& view) {
    if (entryOf(view)) {
        damage(_store.find(view._annotation.get()));
    }
}

void MKAnnotationContainerView::annotationViewDidChangeLook(MKAnnotationView& view) {
    if (entryOf(view)) {
        damage(_store.find(view._annotation.get()));
        placeCallout();
    }
}

void MKAnnotationContainerView::annotationViewDidChangeCallout(MKAnnotationView& view) {
    if (!entryOf(view)) {
        return;
    }
    const uint32_t number = _store.find(view._annotation.get());
    if (number == _dragged && !view.isDraggable()) {
        endDrag(true);
    }
    if (number == _selected) {
        showCallout();
    }
}

CGRect MKAnnotationContainerView::frameOfAnnotationView(const MKAnnotationView& view) const {
    const uint32_t number = _store.find(view._annotation.get());
    if (number == none || _store[number].view.get() != &view) {
        return {};
    }
    const CGRect frame = frameOf(number);
    return frame.offsetBy(0, _store[number].waitsToDrop ? -frame.maxY() - heightAboveMap : -_store.liftOf(number));
}

void MKAnnotationContainerView::startDrops(const std::vector<uint32_t>& numbers) {
    if (numbers.empty()) {
        return;
    }
    std::vector<MKDropAnimation::Drop> batch;
    batch.reserve(std::min(numbers.size(), mostDrops));
    for (const uint32_t number : numbers) {
        if (batch.size() < mostDrops) {
            batch.push_back({number, _store[number].attachSerial, 0, std::nullopt});
        } else {
            _store[number].waitsToDrop = false;
            damage(number);
        }
    }
    _drops.addBatch(std::move(batch));
    setNeedsAnimationStep();
    _dropTimer->start(dispatch_get_main_queue(), longestPause, [this] { finishDrops(); });
}

void MKAnnotationContainerView::stepDrops(double timestamp) {
    if (_drops.isEmpty()) {
        return;
    }
    const auto map = _map.lock();
    _drops.step(timestamp, [&](const MKDropAnimation::Drop& drop, const MKDropAnimation::Height* height) {
        MKAnnotationStore::Entry& entry = _store[drop.number];
        if (!height || !entry.view || entry.attachSerial != drop.attachSerial || drop.number == _dragged) {
            return;
        }
        const CGPoint place = map->_camera.pointFor(_store.pointOf(drop.number), map->_viewSize);
        // From where the whole pin is above the map.
        const double fall = std::max(0.0, place.y) + heightAboveMap;
        const auto lift = static_cast<float>(height->part * fall + height->points);
        if (entry.waitsToDrop || lift != _store.liftOf(drop.number)) {
            damage(drop.number);
            entry.waitsToDrop = false;
            _store.setLift(drop.number, lift);
            damage(drop.number);
        }
    });
    if (_drops.isEmpty()) {
        _dropTimer->cancel();
    } else {
        _dropTimer->start(dispatch_get_main_queue(), longestPause, [this] { finishDrops(); });
    }
}

void MKAnnotationContainerView::finishDrops() {
    for (const MKDropAnimation::Drop& drop : _drops.takeAll()) {
        MKAnnotationStore::Entry& entry = _store[drop.number];
        if (entry.view && entry.attachSerial == drop.attachSerial) {
            damage(drop.number);
            entry.waitsToDrop = false;
            _store.setLift(drop.number, 0);
            damage(drop.number);
        }
    }
    if (const auto window = this->window()) {
        window->idleStateChanged();
    }
}

} // namespace veyra
