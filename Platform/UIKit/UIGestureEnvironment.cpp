#include "Platform/UIKit/UIGestureEnvironment.h"

#include "Platform/UIKit/UIGestureRecognizer.h"
#include "Platform/UIKit/UIWindow.h"

#include <algorithm>

namespace veyra {

std::vector<UIGestureEnvironment::TrackedTouch>::iterator UIGestureEnvironment::find(int64_t identifier) {
    return std::find_if(_touches.begin(), _touches.end(),
                        [identifier](const TrackedTouch& touch) { return touch.last.identifier == identifier; });
}

void UIGestureEnvironment::handleTouch(UIWindow& window, const UITouchEvent& reported) {
    UITouchEvent event = reported;
    const auto touch = find(event.identifier);
    if (!std::isfinite(event.location.x) || !std::isfinite(event.location.y) || !std::isfinite(event.timestamp)) {
        if (touch == _touches.end() || event.phase == UITouchPhase::Began || event.phase == UITouchPhase::Moved)
            return;
        event.location = touch->last.location;
        event.timestamp = touch->last.timestamp;
    }
    if (event.phase == UITouchPhase::Began) {
        if (touch != _touches.end()) {
            UITouchEvent cancelled = touch->last;
            cancelled.phase = UITouchPhase::Cancelled;
            end(touch->serial, cancelled);
        }
        begin(window, event);
        return;
    }
    if (touch == _touches.end())
        return;
    touch->last = event;
    if (event.phase != UITouchPhase::Moved) {
        end(touch->serial, event);
        return;
    }
    const Recognizers recognizers = touch->recognizers; // a handler may change the touches
    for (const auto& weak : recognizers)
        if (const auto recognizer = weak.lock())
            recognizer->handleTouch(event);
}

void UIGestureEnvironment::begin(UIWindow& window, const UITouchEvent& event) {
    const auto touched = window.hitTest(event.location);
    Recognizers recognizers;
    bool isKept = false;
    for (auto view = touched; view; view = view->containingView()) {
        const auto all = view->gestureRecognizers(); // a filter may change them
        for (const auto& recognizer : all)
            if (recognizer->isEnabled() && (!isKept || recognizer->_takesKeptTouches) &&
                (!recognizer->_touchFilter || recognizer->_touchFilter(*touched, event)))
                recognizers.push_back(recognizer);
        isKept = isKept || view->keepsTouches();
    }
    window.setTouchIsKept(isKept);
    _touches.push_back({_nextSerial++, event, recognizers});
    for (const auto& weak : recognizers)
        if (const auto recognizer = weak.lock())
            recognizer->handleTouch(event);
}

/// The touch stays known until all recognisers have it: one that recognises now makes those after it fail.
void UIGestureEnvironment::end(uint64_t serial, const UITouchEvent& event) {
    const auto isEnding = [serial](const TrackedTouch& touch) { return touch.serial == serial; };
    const auto touch = std::find_if(_touches.begin(), _touches.end(), isEnding);
    const Recognizers recognizers = touch->recognizers;
    for (const auto& weak : recognizers)
        if (const auto recognizer = weak.lock())
            recognizer->handleTouch(event);
    std::erase_if(_touches, isEnding);
}

void UIGestureEnvironment::cancelTouches() {
    while (!_touches.empty()) {
        UITouchEvent event = _touches.front().last;
        event.phase = UITouchPhase::Cancelled;
        end(_touches.front().serial, event);
    }
}

std::vector<std::shared_ptr<UIGestureRecognizer>>
UIGestureEnvironment::sharingTouches(const UIGestureRecognizer& recognizer) const {
    std::vector<std::shared_ptr<UIGestureRecognizer>> result;
    for (const TrackedTouch& touch : _touches) {
        std::vector<std::shared_ptr<UIGestureRecognizer>> followers;
        for (const auto& weak : touch.recognizers)
            if (auto follower = weak.lock())
                followers.push_back(std::move(follower));
        const auto isIt = [&recognizer](const auto& follower) { return follower.get() == &recognizer; };
        if (std::none_of(followers.begin(), followers.end(), isIt))
            continue;
        for (auto& follower : followers)
            if (!isIt(follower) && follower->findTouch(touch.last.identifier) != follower->_touches.end() &&
                std::find(result.begin(), result.end(), follower) == result.end())
                result.push_back(std::move(follower));
    }
    return result;
}

bool UIGestureEnvironment::claimTouches(UIGestureRecognizer& recognizer) {
    const auto others = sharingTouches(recognizer);
    for (const auto& other : others)
        if (other->isActive() && other->canPrevent(recognizer))
            return false;
    for (const auto& other : others)
        if (other->state() == UIGestureRecognizerState::Possible && recognizer.canPrevent(*other))
            other->wasPrevented();
    return true;
}

} // namespace veyra
