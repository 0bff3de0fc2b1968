// The simple settings that scripts read and write, and the map's loading callbacks.
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraView.h"

namespace veyra {

namespace {

constexpr double longPressDuration = 0.75; // seconds

} // namespace

void VeyraView::setMapType(const id& type) {
    // A negative number widens with its sign to a value far above the last type, and is ignored there.
    setInternalMapType(type.isNumber() ? static_cast<uint64_t>(static_cast<int64_t>(type.intValue())) : 0);
}

uint64_t VeyraView::internalMapType() const {
    const NSLockGuard guard(_lock);
    return _mapType;
}

void VeyraView::setInternalMapType(uint64_t type) {
    if (type > static_cast<uint64_t>(kVeyraTypeHybrid))
        return;
    {
        const NSLockGuard guard(_lock);
        _mapType = type;
    }
    onMap([type](MKMapView& map) { map.setMapType(static_cast<MKMapType>(type)); });
}

bool VeyraView::zoomEnabled() const {
    const NSLockGuard guard(_lock);
    return _zoomEnabled;
}

void VeyraView::setZoomEnabled(bool enabled) {
    {
        const NSLockGuard guard(_lock);
        _zoomEnabled = enabled;
    }
    onMap([enabled](MKMapView& map) { map.setZoomEnabled(enabled); });
}

bool VeyraView::scrollEnabled() const {
    const NSLockGuard guard(_lock);
    return _scrollEnabled;
}

void VeyraView::setScrollEnabled(bool enabled) {
    {
        const NSLockGuard guard(_lock);
        _scrollEnabled = enabled;
    }
    onMap([enabled](MKMapView& map) { map.setScrollEnabled(enabled); });
}

bool VeyraView::longPressDropsPin() const {
    const NSLockGuard guard(_lock);
    return _longPressDropsPin;
}

void VeyraView::setLongPressDropsPin(bool drops) {
    {
        const NSLockGuard guard(_lock);
        _longPressDropsPin = drops;
    }
    onMainQueue([this, drops] { updateLongPressGestureRecognizer(drops); });
}

void VeyraView::updateLongPressGestureRecognizer(bool drops) {
    if (drops && !_longPressGestureRecognizer) {
        _longPressGestureRecognizer = std::make_shared<UILongPressGestureRecognizer>();
        _longPressGestureRecognizer->setNumberOfTouchesRequired(1);
        _longPressGestureRecognizer->setMinimumPressDuration(longPressDuration);
        _longPressGestureRecognizer->setHandler([weak = std::weak_ptr(objectForWebScript())](auto& recognizer) {
            if (const auto view = weak.lock())
                view->handleLongPress(recognizer);
        });
        _mapView->addGestureRecognizer(_longPressGestureRecognizer);
    } else if (!drops && _longPressGestureRecognizer) {
        _mapView->removeGestureRecognizer(_longPressGestureRecognizer);
        _longPressGestureRecognizer = nullptr;
    }
}

id VeyraView::droppedPinIdentifier() const {
    const NSLockGuard guard(_lock);
    return _droppedPinIdentifier;
}

void VeyraView::setDroppedPinIdentifier(const id& identifier) {
    id former = identifier; // outlives the guard: the old value is released without the lock
    const NSLockGuard guard(_lock);
    std::swap(_droppedPinIdentifier, former);
}

id VeyraView::droppedPinTitle() const {
    return droppedPinIdentifier();
}

void VeyraView::setDroppedPinTitle(const id& title) {
    id former = title; // as above
    const NSLockGuard guard(_lock);
    std::swap(_droppedPinTitle, former);
}

void VeyraView::mapViewWillStartLoadingMap(MKMapView&) {
    sendEvent(kVeyraWillStartLoadingMap);
}

void VeyraView::mapViewDidFinishLoadingMap(MKMapView&) {
    sendEvent(kVeyraDidFinishLoadingMap);
}

void VeyraView::mapViewDidFailLoadingMapWithError(MKMapView&, const std::shared_ptr<NSError>&) {
    sendEvent(kVeyraDidFailLoadingMap);
}

void VeyraView::mapViewRegionWillChangeAnimated(MKMapView&, bool) {
    sendEvent(kVeyraRegionWillChange);
}

} // namespace veyra
