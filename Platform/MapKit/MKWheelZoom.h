// A zoom by wheel or touchpad: every turn moves the scale that it aims at, and the camera follows smoothly, with the
// place under the pointer kept there. It ends a moment after the last turn.
#pragma once

#include "Platform/MapKit/MKMotion.h"
#include "Platform/UIKit/UIEvent.h"

#include <optional>

namespace veyra {

class MKWheelZoom final : public MKMotion {
public:
    /// A gesture has ended this many seconds after its last turn.
    static constexpr double quietTime = 0.2;
    /// How many zoom levels (doublings of the scale) an event asks for; positive zooms in. A notch of a wheel, 100 to
    /// 120 points, is about 0.4; the deltas of a touchpad pinch are about ten times smaller and count ten times as
    /// much.
    static double levelsFor(const UIScrollEvent& event);

    explicit MKWheelZoom(double scale) : _target(scale) {}

    /// Zooms in by `levels` more (negative: out) about `anchor`, in view points.
    void turn(double levels, CGPoint anchor, CGSize viewSize);

    bool step(double timestamp, CGSize viewSize, MKCamera& camera) override;
    void finish(CGSize viewSize, MKCamera& camera) override;
    bool changesScale() const override { return !_arrived; }

private:
    double _target; // the scale aimed at, within the limits
    CGPoint _anchor;
    bool _arrived = true;
    std::optional<double> _lastStep;
    std::optional<double> _quietSince;
};

} // namespace veyra
