#include "Platform/UIKit/UITapGestureRecognizer.h"

#include <algorithm>
#include <utility>

namespace veyra {

using State = UIGestureRecognizerState;

namespace {

constexpr double longestTap = 0.75;    // seconds
constexpr double longestPause = 0.3;   // seconds
constexpr double deadlineSlack = 0.05; // seconds by which an event may be delivered late
constexpr double tapSlop = 10;         // points
constexpr double tapDistance = 30;     // points

double distance(CGPoint a, CGPoint b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

} // namespace

Class UITapGestureRecognizer::classObject() {
    static ClassObject* const cls = new ClassObject("UITapGestureRecognizer", UIGestureRecognizer::classObject(), {});
    return cls;
}

void UITapGestureRecognizer::requireToFail(const std::shared_ptr<UIGestureRecognizer>& other) {
    _awaited.push_back(other);
    other->tellDecisionTo(std::static_pointer_cast<UIGestureRecognizer>(shared_from_this()));
}

bool UITapGestureRecognizer::canPrevent(const UIGestureRecognizer& other) const {
    const auto* tap = dynamic_cast<const UITapGestureRecognizer*>(&other);
    return !tap || tap->_numberOfTapsRequired <= _numberOfTapsRequired;
}

bool UITapGestureRecognizer::isUndecided() const {
    return UIGestureRecognizer::isUndecided() || (state() == State::Possible && (_tapsDone > 0 || _waits));
}

/// Timestamps decide; the deadline only ends the wait for events that do not come.
void UITapGestureRecognizer::startDeadline(double seconds) {
    const auto weak = weak_from_this();
    _deadline.start(dispatch_get_main_queue(), seconds + deadlineSlack, [weak] {
        if (const auto self = std::static_pointer_cast<UITapGestureRecognizer>(weak.lock()))
            self->deadlinePassed();
    });
}

void UITapGestureRecognizer::deadlinePassed() {
    touchesAreNoTap();
    finishSequence();
}

/// The taps so far were not enough; the touches that are down may be the first tap of new ones.
void UITapGestureRecognizer::startOver() {
    _tapsDone = 0;
    announceDecision(false);
}

void UITapGestureRecognizer::touchBegan(const UITouchEvent& event) {
    if (_noTap)
        return;
    if (touches().size() == 1) {
        _touchesSeen = 0;
        _tapStart = event.timestamp;
        startDeadline(longestTap);
        if (_tapsDone > 0 && event.timestamp - _lastTime > longestPause)
            startOver();
    }
    if (touches().size() > _numberOfTouchesRequired) {
        touchesAreNoTap();
        return;
    }
    if (touches().size() <= _touchesSeen)
        return;
    _touchesSeen = touches().size();
    _tapLocation = middleOfTouches();
    if (_tapsDone > 0 && _touchesSeen == _numberOfTouchesRequired &&
        distance(_tapLocation, _lastLocation) > tapDistance)
        startOver();
}

void UITapGestureRecognizer::touchMoved(const UITouchEvent& event) {
    const auto moved = std::find_if(touches().begin(), touches().end(),
                                    [&event](const Touch& touch) { return touch.identifier == event.identifier; });
    if (!_noTap && distance(moved->start, moved->location) > tapSlop)
        touchesAreNoTap();
}

void UITapGestureRecognizer::touchEnded(const UITouchEvent& event) {
    if (!touches().empty())
        return;
    if (_noTap)
        _noTap = false;
    else if (_touchesSeen < _numberOfTouchesRequired || event.timestamp - _tapStart > longestTap)
        touchesAreNoTap();
    else
        completeTap(event.timestamp);
}

void UITapGestureRecognizer::touchesAreNoTap() {
    _deadline.cancel();
    if (!_waits) {
        setState(State::Failed);
        return;
    }
    _noTap = !touches().empty();
    _tapsDone = 0;
}

void UITapGestureRecognizer::completeTap(double timestamp) {
    _lastTime = timestamp;
    _lastLocation = _tapLocation;
    if (++_tapsDone < _numberOfTapsRequired) {
        startDeadline(longestPause);
        return;
    }
    _tapsDone = 0;
    _deadline.cancel();
    if (awaitsOthersThan(nullptr)) {
        _waits = true;
        _waitingLocation = _tapLocation;
        return;
    }
    setWindowLocation(_tapLocation);
    setState(State::Ended);
}

bool UITapGestureRecognizer::awaitsOthersThan(const UIGestureRecognizer* decided) const {
    return std::any_of(_awaited.begin(), _awaited.end(), [decided](const auto& weak) {
        const auto other = weak.lock();
        return other && other.get() != decided && other->isEnabled() && other->isUndecided();
    });
}

void UITapGestureRecognizer::awaitedGestureDecided(const UIGestureRecognizer& other, bool recognized) {
    if (!_waits)
        return;
    if (recognized) {
        setState(State::Failed);
        _waits = _noTap = false;
        finishSequence();
    } else if (!awaitsOthersThan(&other)) {
        recognizeWaitingTap();
    }
}

void UITapGestureRecognizer::recognizeWaitingTap() {
    setWindowLocation(_waitingLocation);
    setState(State::Ended);
    if (!_waits) // the handler cancelled
        return;
    const bool touchesFail = std::exchange(_noTap, false);
    _waits = false;
    if (touches().empty()) {
        finishSequence();
        return;
    }
    // Touches that began meanwhile make a tap of their own.
    setWindowLocation(middleOfTouches());
    setState(touchesFail ? State::Failed : State::Possible);
}

void UITapGestureRecognizer::reset() {
    _deadline.cancel();
    _touchesSeen = _tapsDone = 0;
    _waits = _noTap = false;
}

} // namespace veyra
