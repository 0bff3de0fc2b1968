// Touches on annotation views: taps select, a press that is held lifts a draggable view, which then follows the finger.
// Of the map's own recognisers only those that move it see them.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/MKAnnotationContainerView.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/UIKit/UILongPressGestureRecognizer.h"
#include "Platform/UIKit/UITapGestureRecognizer.h"

namespace veyra {

namespace {

// A lifted view is drawn so far above its place, in points: it looks over the finger.
constexpr float liftHeight = 14;

} // namespace

void MKAnnotationContainerView::addRecognizers() {
    const auto takesPress = [this](UIView& touched, const UITouchEvent&) {
        _pressed = _hit;
        setFocus({});
        const auto map = _map.lock();
        if (map && map->_motion) {
            map->endChange(); // a touch stops a map that moves
        }
        return map && &touched == this && _pressed != none;
    };
    _tapRecognizer = std::make_shared<UITapGestureRecognizer>();
    _tapRecognizer->setTouchFilter(takesPress);
    _tapRecognizer->setHandler([this](UIGestureRecognizer& tap) {
        if (tap.state() == UIGestureRecognizerState::Ended && _pressed != none && _store[_pressed].view) {
            const auto self = sharedView();
            select(_pressed, true);
        }
    });
    addGestureRecognizer(_tapRecognizer);

    _dragRecognizer = std::make_shared<UILongPressGestureRecognizer>();
    _dragRecognizer->setTouchFilter([this, takesPress](UIView& touched, const UITouchEvent& event) {
        return takesPress(touched, event) && _store[_pressed].view && _store[_pressed].view->isDraggable();
    });
    _dragRecognizer->setHandler([this](UIGestureRecognizer& press) { handleDrag(press); });
    addGestureRecognizer(_dragRecognizer);
}

std::shared_ptr<UIView> MKAnnotationContainerView::hitTest(CGPoint point) {
    if (isHidden() || !bounds().contains(point)) {
        return nullptr;
    }
    // What is under the point decides: the container itself is nowhere.
    const auto hit = UIView::hitTest(point);
    if (hit.get() != this) {
        return hit;
    }
    _hit = numberAt(point);
    return _hit != none ? hit : nullptr;
}

void MKAnnotationContainerView::mapTouched() {
    if (_dragsByKeys) {
        endDrag(true);
    }
    _dragRecognizer->cancel();
    if (_focus.number != none) {
        setFocus({});
    }
}

void MKAnnotationContainerView::handleDrag(const UIGestureRecognizer& press) {
    const auto self = sharedView();
    switch (press.state()) {
    case UIGestureRecognizerState::Began:
        if (_pressed != none && _store[_pressed].view && _store[_pressed].view->isDraggable()) {
            beginDrag(_pressed, press.locationInView());
        }
        return;
    case UIGestureRecognizerState::Changed:
        moveDrag(press.locationInView());
        return;
    case UIGestureRecognizerState::Ended:
    case UIGestureRecognizerState::Cancelled:
        endDrag(press.state() == UIGestureRecognizerState::Cancelled);
        return;
    default:
        return;
    }
}

void MKAnnotationContainerView::setDragState(const std::shared_ptr<MKAnnotationView>& view,
                                             MKAnnotationViewDragState state) {
    const auto map = _map.lock();
    const MKAnnotationViewDragState old = view->dragState();
    view->setDragStateAnimated(state, true);
    if (const auto delegate = this->delegate()) {
        runGuarded("drag state",
                   [&] { delegate->mapViewAnnotationViewDidChangeDragStateFromOldState(*map, view, state, old); });
    }
}

void MKAnnotationContainerView::beginDrag(uint32_t number, CGPoint at) {
    if (isDragging()) {
        endDrag(true);
    }
    const auto view = _store[number].view;
    if (!view) {
        return;
    }
    const CGRect frame = frameOf(number);
    const CGPoint place{frame.minX() - view->extent().minX(), frame.minY() - view->extent().minY()};
    damage(number);
    _dragged = number;
    _coordinateBeforeDrag = view->annotation()->coordinate();
    const double world = MKWorldSide * _map.lock()->_camera.scale;
    // The finger may be on another copy of the world than the frame.
    const double copy = std::round((at.x - place.x) / world) * world;
    _dragGrip = {place.x + copy - at.x, place.y - at.y};
    _store.setLift(number, liftHeight);
    damage(number);
    if (_selected == number) {
        hideCallout();
    }
    publishKeys();
    setDragState(view, MKAnnotationViewDragStateStarting);
    if (_dragged == number && view->dragState() == MKAnnotationViewDragStateStarting) {
        setDragState(view, MKAnnotationViewDragStateDragging);
    }
}

void MKAnnotationContainerView::moveDrag(CGPoint to) {
    const auto map = _map.lock();
    if (!isDragging() || !map) {
        return;
    }
    const CGPoint inside{std::clamp(to.x, 0.0, bounds().size.width), std::clamp(to.y, 0.0, bounds().size.height)};
    const MKMapPoint point = map->_camera.mapPointAt({inside.x + _dragGrip.x, inside.y + _dragGrip.y}, map->_viewSize);
    CLLocationCoordinate2D coordinate = MKCoordinateForMapPoint(point);
    coordinate.longitude = std::remainder(coordinate.longitude, 360);
    coordinate.latitude = std::clamp(coordinate.latitude, -MKMaximumLatitude, MKMaximumLatitude);
    const auto annotation = _store[_dragged].annotation;
    annotation->setCoordinate(coordinate);
    coordinateDidChange(annotation);
}

void MKAnnotationContainerView::endDrag(bool cancelled) {
    if (!isDragging()) {
        return;
    }
    const auto self = sharedView();
    const uint32_t number = _dragged;
    const auto view = _store[number].view;
    const auto annotation = _store[number].annotation;
    damage(number);
    _store.setLift(number, 0);
    _dragged = none;
    _dragsByKeys = false;
    damage(number);
    if (cancelled) {
        annotation->setCoordinate(_coordinateBeforeDrag);
    }
    coordinateDidChange(annotation);
    setDragState(view, cancelled ? MKAnnotationViewDragStateCanceling : MKAnnotationViewDragStateEnding);
    setDragState(view, MKAnnotationViewDragStateNone);
    if (_selected != none && _store.find(annotation.get()) == _selected) {
        showCallout();
    }
    publishKeys();
    if (_dragRecognizer->state() != UIGestureRecognizerState::Possible) {
        _dragRecognizer->cancel(); // the drag was ended by others
    }
}

} // namespace veyra
