#include "Platform/UIKit/UIPinchGestureRecognizer.h"

#include "Platform/UIKit/UIPanGestureRecognizer.h"

#include <utility>

namespace veyra {

using State = UIGestureRecognizerState;

namespace {
constexpr double slop = 8; // points
constexpr double shortestDistance =
    10; // points; fingers cannot be closer, and a ratio of next to nothing means nothing
} // namespace

Class UIPinchGestureRecognizer::classObject() {
    static ClassObject* const cls = new ClassObject("UIPinchGestureRecognizer", UIGestureRecognizer::classObject(), {});
    return cls;
}

bool UIPinchGestureRecognizer::canPrevent(const UIGestureRecognizer& other) const {
    return !(dynamic_cast<const UIPanGestureRecognizer*>(&other) && other.view() == view());
}

double UIPinchGestureRecognizer::distanceOfTouches() const {
    const CGPoint a = touches()[0].location, b = touches()[1].location;
    return std::max(shortestDistance, std::hypot(a.x - b.x, a.y - b.y));
}

void UIPinchGestureRecognizer::rebase(double timestamp) {
    _distance = distanceOfTouches();
    _middle = middleOfTouches();
    if (state() == State::Possible)
        _baseDistance = _distance;
    _velocity.add(timestamp, {_logarithm, 0});
}

void UIPinchGestureRecognizer::touchBegan(const UITouchEvent& event) {
    if (touches().size() == 2)
        rebase(event.timestamp);
}

void UIPinchGestureRecognizer::touchMoved(const UITouchEvent& event) {
    if (touches().size() < 2 || !followsTouch(event.identifier))
        return;
    const double growth = distanceOfTouches() / _distance;
    _distance = distanceOfTouches();
    const CGPoint former = std::exchange(_middle, middleOfTouches());
    _logarithm += std::log(growth);
    _velocity.add(event.timestamp, {_logarithm, 0});
    if (isActive()) {
        _scale *= growth;
        _translation = {_translation.x + _middle.x - former.x, _translation.y + _middle.y - former.y};
        setState(State::Changed);
    } else if (std::abs(_distance - _baseDistance) > slop) {
        _scale = _distance / (_baseDistance + std::copysign(slop, _distance - _baseDistance));
        setState(State::Began);
    }
}

void UIPinchGestureRecognizer::touchEnded(const UITouchEvent& event) {
    if (touches().empty()) {
        _velocity.add(event.timestamp, {_logarithm, 0});
        setState(isActive() ? State::Ended : State::Failed);
    } else if (touches().size() >= 2) {
        rebase(event.timestamp);
    }
}

void UIPinchGestureRecognizer::reset() {
    _logarithm = 0;
    _scale = 1;
    _translation = {};
    _velocity.clear();
}

} // namespace veyra
