// Touches that stay in place: begins when they have been down for the minimum duration, then follows their moves, and
// ends when one is lifted. Another finger makes it fail, or cancels it when it has begun. Main queue only.
#pragma once

#include "Platform/UIKit/UIGestureRecognizer.h"

namespace veyra {

class UILongPressGestureRecognizer : public UIGestureRecognizer {
public:
    VEYRA_CLASS()

    size_t numberOfTouchesRequired() const { return _numberOfTouchesRequired; }
    /// Default 1.
    void setNumberOfTouchesRequired(size_t number) { _numberOfTouchesRequired = number; }
    double minimumPressDuration() const { return _minimumPressDuration; }
    /// Seconds, default 0.5.
    void setMinimumPressDuration(double seconds) { _minimumPressDuration = seconds; }
    double allowableMovement() const { return _allowableMovement; }
    /// How far each touch may move before the press begins: points, default 10. Afterwards it moves freely.
    void setAllowableMovement(double points) { _allowableMovement = points; }

protected:
    void touchBegan(const UITouchEvent& event) override;
    void touchMoved(const UITouchEvent& event) override;
    void touchEnded(const UITouchEvent& event) override;
    void reset() override { _timer.cancel(); }

private:
    void press();

    size_t _numberOfTouchesRequired = 1;
    double _minimumPressDuration = 0.5;
    double _allowableMovement = 10;
    DispatchTimer _timer;
};

} // namespace veyra
