// Two touches that move apart or together; `locationInView` is their middle. It begins when their distance has changed
// by more than 8 points, and its scale starts from there. It stays while one finger is lifted and put down again, and
// ends when both are lifted. Further fingers are not followed until one of the two is lifted. Main queue only.
#pragma once

#include "Platform/UIKit/UIGestureRecognizer.h"
#include "Platform/UIKit/VelocityTracker.h"

namespace veyra {

class UIPinchGestureRecognizer : public UIGestureRecognizer {
public:
    VEYRA_CLASS()

    /// The touches' distance relative to that at the beginning, or since `setScale` gave a value to go on from.
    double scale() const { return _scale; }
    void setScale(double scale) { _scale = scale; }
    /// Points that the touches' middle has moved since the beginning, or since `setTranslation` gave a value to go on
    /// from; one touch taking another's place moves nothing.
    CGPoint translationInView() const { return _translation; }
    void setTranslation(CGPoint translation) { _translation = translation; }
    /// The change of the scale a second: the scale times the growth of its logarithm over the last 50 milliseconds.
    double velocity() const { return _scale * _velocity.velocity().x; }

protected:
    void touchBegan(const UITouchEvent& event) override;
    void touchMoved(const UITouchEvent& event) override;
    void touchEnded(const UITouchEvent& event) override;
    void reset() override;
    size_t maximumFollowedTouches() const override { return 2; }
    /// A pan and a pinch of one view go together.
    bool canPrevent(const UIGestureRecognizer& other) const override;

private:
    double distanceOfTouches() const;
    void rebase(double timestamp);

    double _baseDistance = 0; // points, when the second touch began: what the slop is measured from
    double _distance = 0;     // points, at the last event
    CGPoint _middle;          // of the touches at the last event
    CGPoint _translation;
    double _logarithm = 0; // of the whole growth since the first touch
    double _scale = 1;
    VelocityTracker _velocity;
};

} // namespace veyra
