#include "Platform/UIKit/UILongPressGestureRecognizer.h"

#include <algorithm>

namespace veyra {

using State = UIGestureRecognizerState;

Class UILongPressGestureRecognizer::classObject() {
    static ClassObject* const cls =
        new ClassObject("UILongPressGestureRecognizer", UIGestureRecognizer::classObject(), {});
    return cls;
}

void UILongPressGestureRecognizer::touchBegan(const UITouchEvent&) {
    if (touches().size() > _numberOfTouchesRequired) {
        setState(isActive() ? State::Cancelled : State::Failed);
    } else if (touches().size() == _numberOfTouchesRequired) {
        const auto weak = weak_from_this();
        _timer.start(dispatch_get_main_queue(), _minimumPressDuration, [weak] {
            if (const auto self = std::static_pointer_cast<UILongPressGestureRecognizer>(weak.lock()))
                self->press();
        });
    }
}

void UILongPressGestureRecognizer::press() {
    if (state() == State::Possible && touches().size() == _numberOfTouchesRequired)
        setState(State::Began);
}

void UILongPressGestureRecognizer::touchMoved(const UITouchEvent& event) {
    if (isActive()) {
        setState(State::Changed);
        return;
    }
    const auto moved = std::find_if(touches().begin(), touches().end(),
                                    [&event](const Touch& touch) { return touch.identifier == event.identifier; });
    if (std::hypot(moved->location.x - moved->start.x, moved->location.y - moved->start.y) > _allowableMovement)
        setState(State::Failed);
}

void UILongPressGestureRecognizer::touchEnded(const UITouchEvent&) {
    setState(isActive() ? State::Ended : State::Failed);
}

} // namespace veyra
