// One or more touches that move together. The gesture follows the middle of the touches; adding or lifting a finger
// moves nothing. It begins when the middle has moved by more than the slop (3 points for a pointer, 10 for a finger or
// pen), and what it then reports starts from there, so that nothing jumps. It ends when all touches are lifted. Main
// queue only.
#pragma once

#include "Platform/UIKit/UIGestureRecognizer.h"
#include "Platform/UIKit/VelocityTracker.h"

namespace veyra {

class UIPanGestureRecognizer : public UIGestureRecognizer {
public:
    VEYRA_CLASS()

    size_t minimumNumberOfTouches() const { return _minimumNumberOfTouches; }
    /// Default 1. With fewer touches the gesture neither begins nor changes.
    void setMinimumNumberOfTouches(size_t number) { _minimumNumberOfTouches = number; }
    size_t maximumNumberOfTouches() const { return _maximumNumberOfTouches; }
    /// Default: no limit. More touches before the beginning make the gesture fail, later ones are not followed.
    void setMaximumNumberOfTouches(size_t number) { _maximumNumberOfTouches = number; }

    /// Points moved since the beginning, or since `setTranslation` gave a value to go on from.
    CGPoint translationInView() const { return _translation; }
    void setTranslation(CGPoint translation) { _translation = translation; }
    /// Points a second over the last 50 milliseconds.
    CGPoint velocityInView() const { return _velocity.velocity(); }

protected:
    void touchBegan(const UITouchEvent& event) override;
    void touchMoved(const UITouchEvent& event) override;
    void touchEnded(const UITouchEvent& event) override;
    void reset() override;
    size_t maximumFollowedTouches() const override { return _maximumNumberOfTouches; }
    /// A pan and a pinch of one view go together.
    bool canPrevent(const UIGestureRecognizer& other) const override;

private:
    void rebase(double timestamp);

    size_t _minimumNumberOfTouches = 1;
    size_t _maximumNumberOfTouches = SIZE_MAX;
    CGPoint _middle; // of the touches at the last event
    CGPoint _moved;  // sum of the moves of the middle since the first touch
    CGPoint _translation;
    VelocityTracker _velocity;
};

} // namespace veyra
