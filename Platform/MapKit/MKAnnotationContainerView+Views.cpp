// Which annotations have views: the delegate is asked as they come into view, and told of those that were added.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/MKAnnotationContainerView.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/MapKit/MKUserLocation.h"
#include "Platform/MapKit/MKUserLocationView.h"

#include <algorithm>

namespace veyra {

namespace {

// Views are given in an area beyond the visible one, so that a map in motion finds them there: at least by so many
// points, which is more than a pin is high, and by a part of the visible extent. The area is left alone until less than
// the first margin is left of it.
constexpr double leastMargin = 64, leastPart = 0.1;
constexpr double margin = 128, marginPart = 0.3;
// An area that has become so much wider than the visible one is too large.
constexpr double tooWide = 3;

// How long the delegate is asked in one go, in microseconds; the first time after a change longer, so that what an
// ordinary map needs is there at once.
constexpr int64_t askingTime = 4000, firstAskingTime = 30000;
// A report waits for no more views after this, which is when a frame is due.
constexpr int64_t longestWait = 16000;
// Views of a batch that are drawn as they come; further ones are drawn with its last.
constexpr size_t drawnAtOnce = 100;

} // namespace

bool MKAnnotationContainerView::isShowingMap() const {
    const auto map = _map.lock();
    return map && map->hasLayout();
}

MKMapRect MKAnnotationContainerView::areaAround(double points, double part) const {
    const auto map = _map.lock();
    const MKMapRect visible = map->_camera.visibleMapRect(map->_viewSize);
    const double least = points / map->_camera.scale;
    return MKMapRectInset(visible, -std::max(least, part * visible.size.width),
                          -std::max(least, part * visible.size.height));
}

void MKAnnotationContainerView::cameraDidChange() {
    if (!isShowingMap()) {
        return;
    }
    placeCallout();
    const MKMapRect needed = areaAround(leastMargin, leastPart);
    const bool isEnough = !MKMapRectIsNull(_area) && MKMapRectContainsRect(_area, needed) &&
                          _area.size.width <= tooWide * needed.size.width;
    if (!isEnough && _store.size() > 0) {
        setNeedsAnimationStep();
    }
}

void MKAnnotationContainerView::bringViewsUpToDate() {
    if (!isShowingMap()) {
        return;
    }
    const auto self = sharedView();
    const MKMapRect needed = areaAround(leastMargin, leastPart);
    const bool isEnough = !MKMapRectIsNull(_area) && MKMapRectContainsRect(_area, needed) &&
                          _area.size.width <= tooWide * needed.size.width;
    if (!isEnough) {
        updateArea();
        askForWantedViews(firstAskingTime);
    }
    checkFocus();
    publishKeys();
}

// Takes the views away that have left the area, and notes which annotations have come into it.
void MKAnnotationContainerView::updateArea() {
    _area = areaAround(margin, marginPart);
    _orderIsStale |= !_newInOrder.empty();
    updateOrder();
    for (const uint64_t key : _order) {
        const auto number = static_cast<uint32_t>(key);
        if (number != _selected && number != _dragged && !isNear(number)) {
            detach(number);
        }
    }
    _wanted.clear();
    for (const uint32_t number : _store.numbersIn(_area)) {
        if (!_store[number].view) {
            _wanted.push_back(_store[number].annotation);
        }
    }
    const uint32_t location = _store.find(_map.lock()->userLocation().get());
    if (location != none && !_store[location].view && isNear(location)) {
        _wanted.push_back(_store[location].annotation);
    }
}

// The circle of the user's location reaches farther than its dot.
bool MKAnnotationContainerView::isNear(uint32_t number) const {
    const MKAnnotationStore::Entry& entry = _store[number];
    if (!entry.hasPoint || MKMapRectIsNull(_area)) {
        return false;
    }
    const auto map = _map.lock();
    return MKAnnotationStore::isIn(_area, _store.pointOf(number)) ||
           (map && entry.annotation == map->userLocation() && map->isUserLocationIn(_area));
}

void MKAnnotationContainerView::askForWantedViews(int64_t microseconds) {
    const auto self = sharedView();
    const int64_t end = g_get_monotonic_time() + microseconds;
    while (!_wanted.empty() && g_get_monotonic_time() < end) {
        const auto annotation = std::move(_wanted.back());
        _wanted.pop_back();
        const uint32_t number = _store.find(annotation.get());
        if (number != none && !_store[number].view && isNear(number)) {
            askForView(number);
        }
    }
    if (_wanted.empty() || _askingQueued) {
        return;
    }
    _askingQueued = true;
    dispatch_async(dispatch_get_main_queue(), [weak = weak_from_this()] {
        if (const auto container = std::static_pointer_cast<MKAnnotationContainerView>(weak.lock())) {
            container->_askingQueued = false;
            if (container->isShowingMap()) {
                container->askForWantedViews(askingTime);
            }
        }
    });
}

void MKAnnotationContainerView::askForView(uint32_t number) {
    const auto map = _map.lock();
    const auto annotation = _store[number].annotation;
    const auto isLocation = std::dynamic_pointer_cast<MKUserLocation>(annotation);
    std::shared_ptr<MKAnnotationView> view;
    if (const auto delegate = map->delegate()) {
        runGuarded("annotation view", [&] { view = delegate->mapViewViewForAnnotation(*map, annotation); });
    }
    const uint32_t found = _store.find(annotation.get());
    if (found == none || _store[found].view || !_store[found].hasPoint) {
        return;
    }
    if (!view || view->_observer) { // a view that another annotation has is no answer
        if (isLocation) {
            view = MKUserLocationView::viewForLocation(isLocation);
        } else {
            view = MKPinAnnotationView::initWithAnnotationReuseIdentifier(annotation, std::nullopt);
        }
    }
    attach(found, view);
}

void MKAnnotationContainerView::attach(uint32_t number, const std::shared_ptr<MKAnnotationView>& view) {
    MKAnnotationStore::Entry& entry = _store[number];
    view->_annotation = entry.annotation;
    view->_observer = this;
    entry.view = view;
    const auto* const pin = dynamic_cast<const MKPinAnnotationView*>(view.get());
    entry.waitsToDrop = pin && pin->animatesDrop() && !entry.hasBeenShown && _map.lock()->canAnimate();
    entry.hasBeenShown = true;
    if (auto location = std::dynamic_pointer_cast<MKUserLocationView>(view)) {
        _locationView = location;
    }
    addToOrder(number);
    if (!_holdsBackNew) {
        damage(number);
    }
    _unreported.push_back({number, ++entry.attachSerial});
    scheduleReport();
}

void MKAnnotationContainerView::detach(uint32_t number) {
    damage(number);
    MKAnnotationStore::Entry& entry = _store[number];
    const auto view = std::move(entry.view);
    entry.view = nullptr;
    entry.waitsToDrop = false;
    _store.setLift(number, 0);
    for (uint32_t* const touched : {&_hit, &_pressed}) {
        if (*touched == number) {
            *touched = none;
        }
    }
    _orderIsStale = true;
    view->leaveMap();
    if (view->_hasReuseIdentifier) {
        _reuse.add(view);
    }
}

void MKAnnotationContainerView::add(const std::vector<std::shared_ptr<MKAnnotation>>& annotations) {
    const auto self = sharedView();
    const auto map = _map.lock();
    _holdsBackNew = _awaitsMore && _unreported.size() > drawnAtOnce;
    _hasHeldBackNew |= _holdsBackNew;
    for (const auto& annotation : annotations) {
        const uint32_t number = annotation && map ? _store.add(annotation) : none;
        if (number == none || !map->hasLayout()) {
            continue;
        }
        if (MKMapRectIsNull(_area)) {
            _area = areaAround(margin, marginPart);
        }
        if (isNear(number)) {
            askForView(number);
        }
    }
    _holdsBackNew = false;
}

// To draw all again for every part of a large batch would take longer than to add it.
void MKAnnotationContainerView::setAwaitsMore(bool awaits) {
    _awaitsMore = awaits;
    if (awaits) {
        return;
    }
    if (std::exchange(_hasHeldBackNew, false)) {
        _orderIsStale = true;
        _layer.invalidateAll();
        setNeedsDisplay();
    }
    if (std::exchange(_isReportHeldBack, false)) {
        queueReport(g_get_monotonic_time() + longestWait);
    }
}

void MKAnnotationContainerView::remove(const std::vector<std::shared_ptr<MKAnnotation>>& annotations) {
    const auto self = sharedView();
    for (const auto& annotation : annotations) {
        removeOne(annotation);
    }
}

void MKAnnotationContainerView::removeOne(const std::shared_ptr<MKAnnotation>& annotation) {
    if (const uint32_t number = _store.find(annotation.get()); number != none) {
        if (number == _dragged) {
            endDrag(true);
        }
        if (number == _selected) {
            deselect();
        }
    }
    const uint32_t number = _store.find(annotation.get());
    if (number == none) { // the delegate was faster
        return;
    }
    if (_store[number].view) {
        detach(number);
    }
    _store.remove(number);
    if (number == _focus.number) {
        setFocus({});
    } else {
        publishKeys();
    }
}

void MKAnnotationContainerView::coordinateDidChange(const std::shared_ptr<MKAnnotation>& annotation) {
    const auto self = sharedView();
    const uint32_t number = _store.find(annotation.get());
    if (number == none) {
        return;
    }
    if (_store[number].view) {
        damage(number);
    }
    _store.updatePoint(number);
    const bool staysNear = isShowingMap() && isNear(number);
    if (!_store[number].view) {
        if (staysNear) {
            askForView(number);
        }
        return;
    }
    const bool isHeld = number == _selected || number == _dragged;
    if (!staysNear && !(isHeld && _store[number].hasPoint)) {
        if (number == _selected) {
            deselect();
        }
        if (const uint32_t still = _store.find(annotation.get()); still != none && _store[still].view) {
            detach(still);
        }
        publishKeys();
        return;
    }
    addToOrder(number);
    damage(number);
    placeCallout();
}

void MKAnnotationContainerView::scheduleReport() {
    if (_reportQueued) {
        return;
    }
    _reportQueued = true;
    setNeedsAnimationStep();
    queueReport(g_get_monotonic_time() + longestWait);
}

void MKAnnotationContainerView::queueReport(int64_t deadline) {
    dispatch_async(dispatch_get_main_queue(), [weak = weak_from_this(), deadline] {
        if (const auto self = std::static_pointer_cast<MKAnnotationContainerView>(weak.lock())) {
            self->reportUnlessMoreIsComing(deadline);
        }
    });
}

// What waits in the queue may add more views: it goes first. Other maps wait like this one, so not for ever.
void MKAnnotationContainerView::reportUnlessMoreIsComing(int64_t deadline) {
    if (!_reportQueued) {
        return;
    }
    if (_awaitsMore) {
        _isReportHeldBack = true;
        return;
    }
    if (dispatch_get_main_queue().waitingBlocks() > 0 && g_get_monotonic_time() < deadline) {
        queueReport(deadline);
    } else {
        reportAddedViews();
    }
}

void MKAnnotationContainerView::reportAddedViews() {
    const auto self = sharedView();
    _reportQueued = _isReportHeldBack = false;
    std::vector<std::shared_ptr<MKAnnotationView>> views;
    std::vector<uint32_t> dropping;
    views.reserve(_unreported.size());
    for (const Attachment& added : std::exchange(_unreported, {})) {
        MKAnnotationStore::Entry& entry = _store[added.number];
        if (!entry.view || entry.attachSerial != added.serial) {
            continue;
        }
        views.push_back(entry.view);
        if (entry.waitsToDrop) {
            dropping.push_back(added.number);
        }
    }
    startDrops(dropping);
    if (views.empty()) {
        return;
    }
    publishKeys();
    const auto map = _map.lock();
    if (const auto delegate = this->delegate()) {
        runGuarded("added annotation views", [&] { delegate->mapViewDidAddAnnotationViews(*map, views); });
    }
}

bool MKAnnotationContainerView::isUnreported(uint32_t number) const {
    return std::any_of(_unreported.begin(), _unreported.end(), [this, number](const Attachment& added) {
        return added.number == number && added.serial == _store[number].attachSerial;
    });
}

} // namespace veyra
