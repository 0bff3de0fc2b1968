#include "Platform/UIKit/UIGestureRecognizer.h"

#include "Platform/UIKit/UIGestureEnvironment.h"
#include "Platform/UIKit/UIWindow.h"

#include <algorithm>

namespace veyra {

using State = UIGestureRecognizerState;

Class UIGestureRecognizer::classObject() {
    static ClassObject* const cls = new ClassObject("UIGestureRecognizer", NSObject::classObject(), {});
    return cls;
}

void UIGestureRecognizer::setEnabled(bool enabled) {
    if (enabled == _enabled)
        return;
    _enabled = enabled;
    if (!enabled)
        cancel();
}

CGPoint UIGestureRecognizer::locationInView() const {
    const auto owner = view();
    return owner ? owner->convertPointFromWindow(_location) : _location;
}

bool UIGestureRecognizer::hasEnded() const {
    return _state == State::Ended || _state == State::Cancelled || _state == State::Failed;
}

std::vector<UIGestureRecognizer::Touch>::iterator UIGestureRecognizer::findTouch(int64_t identifier) {
    return std::find_if(_touches.begin(), _touches.end(),
                        [identifier](const Touch& touch) { return touch.identifier == identifier; });
}

bool UIGestureRecognizer::followsTouch(int64_t identifier) const {
    const auto end = _touches.begin() + static_cast<ptrdiff_t>(numberOfTouches());
    return std::any_of(_touches.begin(), end,
                       [identifier](const Touch& touch) { return touch.identifier == identifier; });
}

CGPoint UIGestureRecognizer::middleOfTouches() const {
    const size_t count = numberOfTouches();
    CGPoint sum;
    for (size_t i = 0; i < count; ++i) {
        sum.x += _touches[i].location.x;
        sum.y += _touches[i].location.y;
    }
    return {sum.x / static_cast<double>(count), sum.y / static_cast<double>(count)};
}

void UIGestureRecognizer::handleTouch(const UITouchEvent& event) {
    const auto self = shared_from_this(); // the handler may drop the last reference
    _timestamp = event.timestamp;
    const auto touch = findTouch(event.identifier);
    switch (event.phase) {
    case UITouchPhase::Began:
        if (!_enabled || touch != _touches.end())
            return;
        _touches.push_back({event.identifier, event.type, event.location, event.location, event.timestamp});
        if (hasEnded())
            return;
        _location = middleOfTouches();
        touchBegan(event);
        return;
    case UITouchPhase::Moved:
        if (touch == _touches.end())
            return;
        touch->location = event.location;
        if (hasEnded())
            return;
        _location = middleOfTouches();
        touchMoved(event);
        return;
    case UITouchPhase::Ended:
        if (touch != _touches.end())
            endTouch(event);
        return;
    case UITouchPhase::Cancelled:
        if (touch != _touches.end())
            cancel();
        return;
    }
}

void UIGestureRecognizer::endTouch(const UITouchEvent& event) {
    if (!(findTouch(event.identifier)->location == event.location)) {
        UITouchEvent moved = event;
        moved.phase = UITouchPhase::Moved;
        handleTouch(moved);
    }
    const auto touch = findTouch(event.identifier);
    if (touch == _touches.end()) // the handler cancelled
        return;
    _touches.erase(touch);
    if (!hasEnded()) {
        if (isActive() && !_touches.empty())
            _location = middleOfTouches();
        touchEnded(event);
    }
    finishSequence();
}

void UIGestureRecognizer::finishSequence() {
    if (!hasEnded() || !_touches.empty())
        return;
    _state = State::Possible;
    reset();
}

void UIGestureRecognizer::cancel() {
    const auto self = shared_from_this();
    const bool undecided = isUndecided();
    _touches.clear();
    if (isActive())
        setState(State::Cancelled);
    else if (undecided)
        setState(State::Failed);
    forgetTouches();
}

void UIGestureRecognizer::forgetTouches() {
    _touches.clear();
    _state = State::Possible;
    reset();
}

void UIGestureRecognizer::setState(State state) {
    const auto self = shared_from_this();
    const bool decides = _state == State::Possible && state != State::Possible;
    bool recognized = decides && (state == State::Began || state == State::Ended);
    if (recognized && claimsTouches()) {
        const auto owner = view();
        const auto window = owner ? owner->window() : nullptr;
        if (window && !window->gestureEnvironment().claimTouches(*this)) {
            state = State::Failed;
            recognized = false;
        }
        if (_state != State::Possible) // a handler that ran meanwhile cancelled
            return;
    }
    _state = state;
    if (decides)
        announceDecision(recognized);
    if (_state == state)
        callHandler();
}

void UIGestureRecognizer::announceDecision(bool recognized) {
    const auto waiting = _waiting;
    for (const auto& weak : waiting)
        if (const auto recognizer = weak.lock())
            recognizer->awaitedGestureDecided(*this, recognized);
    std::erase_if(_waiting, [](const auto& weak) { return weak.expired(); });
}

void UIGestureRecognizer::callHandler() {
    if (_state == State::Possible || _state == State::Failed || !_handler)
        return;
    const Handler handler = _handler; // it may replace itself
    runGuarded("gesture handler", [&] { handler(*this); });
}

} // namespace veyra
