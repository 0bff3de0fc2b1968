// Gesture recognisers: each follows the touches of its view and of the views below it and reports its state to a
// handler. Main queue only. A view owns its recognisers; a recogniser does not own its view. A handler may remove the
// recogniser, its view or the window.
//
// A recogniser starts as possible. Continuous gestures go through began and changed to ended or cancelled, taps go to
// ended at once, and what is no such gesture fails. When all touches have been lifted the recogniser is possible again.
// Of recognisers that share a touch, the first one to recognise makes the others fail (see `canPrevent`).
#pragma once

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/UIKit/UIEvent.h"
#include "Platform/UIKit/UIView.h"

namespace veyra {

enum class UIGestureRecognizerState { Possible, Began, Changed, Ended, Cancelled, Failed };

class UIGestureRecognizer : public SelfSharingObject {
public:
    VEYRA_CLASS()
    using Handler = std::function<void(UIGestureRecognizer&)>;
    using TouchFilter = std::function<bool(UIView& touched, const UITouchEvent& event)>;

    /// The handler is called with every change to began, changed, ended or cancelled.
    void setHandler(Handler handler) { _handler = std::move(handler); }
    /// Asked when a touch begins in the recogniser's view or below it, with the deepest view under the touch; the
    /// recogniser gets the touch when the answer is true, or when there is no filter.
    void setTouchFilter(TouchFilter filter) { _touchFilter = std::move(filter); }
    /// Whether touches that a view below keeps (UIView::keepsTouches) are the recogniser's too. Default false.
    void setTakesKeptTouches(bool takes) { _takesKeptTouches = takes; }
    UIGestureRecognizerState state() const { return _state; }
    std::shared_ptr<UIView> view() const { return _view.lock(); }
    bool isEnabled() const { return _enabled; }
    /// Disabling cancels what is under way.
    void setEnabled(bool enabled);
    /// The middle of the touches that the gesture follows, in the view's points; after the last one was lifted, where
    /// it was last.
    CGPoint locationInView() const;
    /// The time of the last event of a touch of the gesture, in seconds.
    double timestamp() const { return _timestamp; }
    /// How many touches the gesture follows now.
    size_t numberOfTouches() const { return std::min(_touches.size(), maximumFollowedTouches()); }

    /// For the window: a touch in the recogniser's view changed. Touches that did not begin here are ignored.
    void handleTouch(const UITouchEvent& event);
    /// Ends what is under way (cancelled when it had begun) and forgets the touches that are down.
    void cancel();

protected:
    struct Touch {
        int64_t identifier;
        UITouchType type;
        CGPoint start, location; ///< window points
        double startTime;
    };
    /// Called while the gesture is possible, began or changed, after the touch was added to or taken out of `touches`.
    /// A lifted touch that also moved is first reported as moved.
    virtual void touchBegan(const UITouchEvent& event) = 0;
    virtual void touchMoved(const UITouchEvent& event) = 0;
    virtual void touchEnded(const UITouchEvent& event) = 0;
    /// Called after the end of every sequence of touches.
    virtual void reset() {}
    /// Later touches than that many are kept, but not followed until an earlier one is lifted.
    virtual size_t maximumFollowedTouches() const { return SIZE_MAX; }
    /// True when recognising this gesture makes `other`, which shares a touch and has not been recognised, fail.
    virtual bool canPrevent(const UIGestureRecognizer& /*other*/) const { return true; }
    /// Another gesture took the touches.
    virtual void wasPrevented() { setState(UIGestureRecognizerState::Failed); }
    /// True while the gesture may still be recognised from what has happened so far.
    virtual bool isUndecided() const { return _state == UIGestureRecognizerState::Possible && !_touches.empty(); }
    /// A gesture that this one waits for (see `tellDecisionTo`) was recognised or has failed.
    virtual void awaitedGestureDecided(const UIGestureRecognizer& /*other*/, bool /*recognized*/) {}
    /// False when the touches by which the gesture was recognised are over: those down now are none of its business.
    virtual bool claimsTouches() const { return true; }

    /// Moves to the state and calls the handler. A gesture that another one prevents fails instead. The handler may
    /// have cancelled the gesture when this returns.
    void setState(UIGestureRecognizerState state);
    /// After a change of state outside the touch functions: starts anew when no touch is down.
    void finishSequence();
    /// Tells `waiting` from now on, through `awaitedGestureDecided`, how this gesture is decided.
    void tellDecisionTo(const std::shared_ptr<UIGestureRecognizer>& waiting) { _waiting.push_back(waiting); }
    void announceDecision(bool recognized);
    bool hasEnded() const;
    bool isActive() const {
        return _state == UIGestureRecognizerState::Began || _state == UIGestureRecognizerState::Changed;
    }

    /// True when the touch is one of those that the gesture follows.
    bool followsTouch(int64_t identifier) const;
    /// The touches that are down, in the order in which they began.
    const std::vector<Touch>& touches() const { return _touches; }
    /// The middle of the followed touches in window points. Requires a touch.
    CGPoint middleOfTouches() const;
    /// Replaces what `locationInView` answers until the next touch begins or moves.
    void setWindowLocation(CGPoint location) { _location = location; }

private:
    friend class UIView;
    friend class UIGestureEnvironment;
    friend class UITapGestureRecognizer; // waits for gestures of any kind
    std::vector<Touch>::iterator findTouch(int64_t identifier);
    void endTouch(const UITouchEvent& event);
    void forgetTouches();
    void callHandler();

    std::weak_ptr<UIView> _view;
    Handler _handler;
    TouchFilter _touchFilter;
    UIGestureRecognizerState _state = UIGestureRecognizerState::Possible;
    bool _enabled = true;
    bool _takesKeptTouches = false;
    std::vector<Touch> _touches;
    CGPoint _location;
    double _timestamp = 0;
    std::vector<std::weak_ptr<UIGestureRecognizer>> _waiting;
};

} // namespace veyra
