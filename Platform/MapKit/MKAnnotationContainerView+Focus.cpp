// Annotations by the keyboard: Tab goes from view to view from north to south, and to the buttons of the callout; Enter
// selects or presses; the space bar lifts a draggable view, which the arrows then move; Escape takes back.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/MKAnnotationContainerView.h"
#include "Platform/MapKit/MKCalloutView.h"
#include "Platform/MapKit/MKMapView.h"
#include "Platform/UIKit/UIButton.h"
#include "Platform/UIKit/UIWindow.h"

#include <cairo.h>

namespace veyra {

namespace {

// How far an arrow key moves a lifted view, in points, and with the shift key.
constexpr double arrowStep = 10, smallArrowStep = 1;

} // namespace

bool MKAnnotationContainerView::canFocus(uint32_t number) const {
    return _store[number].view && _store[number].view->isEnabled() && isOnScreen(number);
}

// The next view in a direction that is on the screen: the first or the last one when none has the focus.
uint32_t MKAnnotationContainerView::focusableAfter(uint32_t number, bool forward) {
    updateSprites();
    const auto count = static_cast<int64_t>(_order.size());
    int64_t at = forward ? -1 : count;
    if (number != none && _store[number].view && _store[number].position < _order.size()) {
        at = _store[number].position;
    }
    for (at += forward ? 1 : -1; at >= 0 && at < count; at += forward ? 1 : -1) {
        const auto found = static_cast<uint32_t>(_order[static_cast<size_t>(at)]);
        if (canFocus(found)) {
            return found;
        }
    }
    return none;
}

std::shared_ptr<UIButton> MKAnnotationContainerView::calloutButton(FocusPart part) const {
    if (!_callout || part == FocusPart::View) {
        return nullptr;
    }
    const auto& content = _callout->content();
    return std::dynamic_pointer_cast<UIButton>(part == FocusPart::LeftButton ? content.left : content.right);
}

MKAnnotationContainerView::Focus MKAnnotationContainerView::focusAfter(const Focus& focus, bool forward) {
    if (focus.number != none && focus.number == _selected) {
        // The view, then its buttons.
        for (int part = static_cast<int>(focus.part) + (forward ? 1 : -1); part >= 0 && part <= 2;
             part += forward ? 1 : -1) {
            const auto next = static_cast<FocusPart>(part);
            if (next == FocusPart::View || calloutButton(next)) {
                return {focus.number, next};
            }
        }
    }
    return {focusableAfter(focus.number, forward), FocusPart::View};
}

void MKAnnotationContainerView::setFocus(const Focus& focus) {
    const auto damageRing = [this] {
        if (_focus.number != none && _store[_focus.number].view) {
            setNeedsDisplay();
        }
    };
    damageRing();
    _focus = focus;
    damageRing();
    if (_callout) {
        const bool isHere = focus.number != none && focus.number == _selected;
        _callout->setFocusedButton(isHere ? calloutButton(focus.part) : nullptr);
    }
    publishKeys();
}

// What has the focus may have gone.
void MKAnnotationContainerView::checkFocus() {
    if (_focus.number != none && !canFocus(_focus.number)) {
        setFocus({});
    } else if (_focus.part != FocusPart::View && !(_focus.number == _selected && calloutButton(_focus.part))) {
        setFocus({_focus.number, FocusPart::View});
    }
}

// Once for all that changes in a turn: which view comes next is known only when all are in order again.
void MKAnnotationContainerView::publishKeys() {
    if (_publishQueued) {
        return;
    }
    _publishQueued = true;
    dispatch_async(dispatch_get_main_queue(), [weak = weak_from_this()] {
        if (const auto self = std::static_pointer_cast<MKAnnotationContainerView>(weak.lock())) {
            self->_publishQueued = false;
            if (const auto map = self->_map.lock()) {
                map->publishInputPolicy();
                if (const auto window = map->window()) {
                    window->setAccessibilityState(self->accessibilityState());
                }
            }
        }
    });
}

void MKAnnotationContainerView::addKeysTo(UIInputPolicy& policy) {
    const bool hasFocus = _focus.number != none;
    policy.usesNextKey = !_tabLeaves && (isDragging() || focusAfter(_focus, true).number != none);
    policy.usesPreviousKey = isDragging() || hasFocus;
    policy.usesActivationKeys = hasFocus;
    policy.usesEscapeKey = isDragging() || _selected != none || hasFocus;
    policy.usesPanKeys = policy.usesPanKeys || isDragging();
}

void MKAnnotationContainerView::handleFocus(const UIFocusEvent& event) {
    _tabLeaves = false;
    publishKeys();
    if (!event.hasFocus) {
        if (_dragsByKeys) {
            endDrag(true);
        }
        setFocus({});
    }
}

bool MKAnnotationContainerView::handleKey(const UIKeyEvent& event) {
    if (!isShowingMap() || event.control || event.alternate || event.meta) {
        return false;
    }
    const auto self = sharedView();
    checkFocus();
    if (event.key == "Tab") {
        return handleTab(!event.shift);
    }
    if (event.key == "Escape") {
        return handleEscape();
    }
    if (event.key == "Enter" || event.key == " ") {
        return handleActivation(event.key == " ");
    }
    return _dragsByKeys && isDragging() && handleArrow(event);
}

bool MKAnnotationContainerView::handleTab(bool forward) {
    if (isDragging()) {
        return true;
    }
    if (forward && _tabLeaves) {
        _tabLeaves = false;
        publishKeys();
        return false;
    }
    if (_focus.number == none && !forward) {
        return false;
    }
    setFocus(focusAfter(_focus, forward));
    // Backwards from the first view the focus is on the map itself.
    return !forward || _focus.number != none;
}

// One step back at a time. With nothing left to take back, the next Tab leaves the map, however many views there are.
bool MKAnnotationContainerView::handleEscape() {
    if (isDragging()) {
        endDrag(true);
    } else if (_selected != none) {
        deselect();
    } else if (_focus.number != none) {
        _tabLeaves = true;
        setFocus({});
    } else {
        return false;
    }
    return true;
}

bool MKAnnotationContainerView::handleActivation(bool isSpace) {
    if (_focus.number == none) {
        return false;
    }
    if (const auto button = calloutButton(_focus.part); button && _focus.number == _selected) {
        calloutButtonTapped(button);
    } else if (isDragging()) {
        endDrag(false);
    } else if (isSpace && _store[_focus.number].view->isDraggable()) {
        const CGRect frame = frameOf(_focus.number);
        beginDrag(_focus.number, frame.center());
        _dragsByKeys = isDragging();
        _keyDragPoint = frame.center();
        publishKeys();
    } else {
        select(_focus.number, true);
    }
    return true;
}

bool MKAnnotationContainerView::handleArrow(const UIKeyEvent& event) {
    const double step = event.shift ? smallArrowStep : arrowStep;
    if (event.key == "ArrowLeft" || event.key == "ArrowRight") {
        _keyDragPoint.x += event.key == "ArrowRight" ? step : -step;
    } else if (event.key == "ArrowUp" || event.key == "ArrowDown") {
        _keyDragPoint.y += event.key == "ArrowDown" ? step : -step;
    } else {
        return false;
    }
    _keyDragPoint.x = std::clamp(_keyDragPoint.x, 0.0, bounds().size.width);
    _keyDragPoint.y = std::clamp(_keyDragPoint.y, 0.0, bounds().size.height);
    moveDrag(_keyDragPoint);
    return true;
}

// A ring around what has the focus, seen on any ground.
void MKAnnotationContainerView::drawFocus(const UIGraphicsContext& context) {
    if (_focus.number == none || _focus.part != FocusPart::View || !_store[_focus.number].view) {
        return;
    }
    const CGRect ring = frameOf(_focus.number).offsetBy(0, -_store.liftOf(_focus.number)).insetBy(-3, -3);
    const double radius = std::min({6.0, ring.size.width / 2, ring.size.height / 2});
    cairo_t* const cairo = context.cairo;
    cairo_new_path(cairo);
    cairo_arc(cairo, ring.minX() + radius, ring.minY() + radius, radius, M_PI, 1.5 * M_PI);
    cairo_arc(cairo, ring.maxX() - radius, ring.minY() + radius, radius, 1.5 * M_PI, 2 * M_PI);
    cairo_arc(cairo, ring.maxX() - radius, ring.maxY() - radius, radius, 0, 0.5 * M_PI);
    cairo_arc(cairo, ring.minX() + radius, ring.maxY() - radius, radius, 0.5 * M_PI, M_PI);
    cairo_close_path(cairo);
    cairo_set_source_rgba(cairo, 1, 1, 1, 0.9);
    cairo_set_line_width(cairo, 4);
    cairo_stroke_preserve(cairo);
    cairo_set_source_rgb(cairo, 0.05, 0.42, 0.88);
    cairo_set_line_width(cairo, 2);
    cairo_stroke(cairo);
}

} // namespace veyra
