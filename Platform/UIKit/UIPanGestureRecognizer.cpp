#include "Platform/UIKit/UIPanGestureRecognizer.h"

#include "Platform/UIKit/UIPinchGestureRecognizer.h"

namespace veyra {

using State = UIGestureRecognizerState;

namespace {
constexpr double pointerSlop = 3, fingerSlop = 10; // points
}

Class UIPanGestureRecognizer::classObject() {
    static ClassObject* const cls = new ClassObject("UIPanGestureRecognizer", UIGestureRecognizer::classObject(), {});
    return cls;
}

bool UIPanGestureRecognizer::canPrevent(const UIGestureRecognizer& other) const {
    return !(dynamic_cast<const UIPinchGestureRecognizer*>(&other) && other.view() == view());
}

void UIPanGestureRecognizer::rebase(double timestamp) {
    _middle = middleOfTouches();
    _velocity.add(timestamp, _moved);
}

void UIPanGestureRecognizer::touchBegan(const UITouchEvent& event) {
    if (state() == State::Possible && touches().size() > _maximumNumberOfTouches)
        setState(State::Failed);
    else
        rebase(event.timestamp);
}

void UIPanGestureRecognizer::touchMoved(const UITouchEvent& event) {
    if (!followsTouch(event.identifier))
        return;
    const CGPoint middle = middleOfTouches();
    const CGPoint move{middle.x - _middle.x, middle.y - _middle.y};
    if (numberOfTouches() < _minimumNumberOfTouches) {
        rebase(event.timestamp);
        return;
    }
    _moved = {_moved.x + move.x, _moved.y + move.y};
    rebase(event.timestamp);
    if (isActive()) {
        _translation = {_translation.x + move.x, _translation.y + move.y};
        setState(State::Changed);
        return;
    }
    const double slop = touches().front().type == UITouchType::IndirectPointer ? pointerSlop : fingerSlop;
    const double distance = std::hypot(_moved.x, _moved.y);
    if (distance <= slop)
        return;
    const double beyondSlop = 1 - slop / distance;
    _translation = {_moved.x * beyondSlop, _moved.y * beyondSlop};
    setState(State::Began);
}

void UIPanGestureRecognizer::touchEnded(const UITouchEvent& event) {
    if (!touches().empty()) {
        rebase(event.timestamp);
        return;
    }
    _velocity.add(event.timestamp, _moved);
    setState(isActive() ? State::Ended : State::Failed);
}

void UIPanGestureRecognizer::reset() {
    _moved = _translation = {};
    _velocity.clear();
}

} // namespace veyra
