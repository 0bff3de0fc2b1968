// Short touches in one place: single and multiple taps with one or more fingers. A touch counts as a tap when it lasts
// at most 0.75 seconds and moves by at most 10 points; the next tap of several begins at most 0.3 seconds after the
// last lift and at most 30 points away. Recognised as ended when the last finger of the last tap is lifted. Main queue
// only.
#pragma once

#include "Platform/UIKit/UIGestureRecognizer.h"

namespace veyra {

class UITapGestureRecognizer : public UIGestureRecognizer {
public:
    VEYRA_CLASS()

    size_t numberOfTapsRequired() const { return _numberOfTapsRequired; }
    /// Default 1.
    void setNumberOfTapsRequired(size_t number) { _numberOfTapsRequired = number; }
    size_t numberOfTouchesRequired() const { return _numberOfTouchesRequired; }
    /// Fingers of each tap. Default 1.
    void setNumberOfTouchesRequired(size_t number) { _numberOfTouchesRequired = number; }

    /// From now on this tap is recognised only once `other` has failed, and fails when `other` is recognised.
    void requireToFail(const std::shared_ptr<UIGestureRecognizer>& other);

protected:
    void touchBegan(const UITouchEvent& event) override;
    void touchMoved(const UITouchEvent& event) override;
    void touchEnded(const UITouchEvent& event) override;
    void reset() override;
    /// A tap leaves taps of more times alone: they begin with it.
    bool canPrevent(const UIGestureRecognizer& other) const override;
    void wasPrevented() override { touchesAreNoTap(); }
    bool isUndecided() const override;
    void awaitedGestureDecided(const UIGestureRecognizer& other, bool recognized) override;
    bool claimsTouches() const override { return !_waits; }

private:
    void startDeadline(double seconds);
    void deadlinePassed();
    void startOver();
    void touchesAreNoTap();
    void completeTap(double timestamp);
    bool awaitsOthersThan(const UIGestureRecognizer* decided) const;
    void recognizeWaitingTap();

    size_t _numberOfTapsRequired = 1;
    size_t _numberOfTouchesRequired = 1;
    std::vector<std::weak_ptr<UIGestureRecognizer>> _awaited;

    // The current tap.
    size_t _touchesSeen = 0; // most touches down at once
    double _tapStart = 0;    // when the first of them began
    CGPoint _tapLocation;    // their middle when most were down
    // The taps before it.
    size_t _tapsDone = 0;
    CGPoint _lastLocation;
    double _lastTime = 0; // when the last finger was lifted
    // Recognised but for the gestures it waits for. Other touches may begin meanwhile.
    bool _waits = false;
    CGPoint _waitingLocation;
    bool _noTap = false; // the touches that are down are no tap
    DispatchTimer _deadline;
};

} // namespace veyra
