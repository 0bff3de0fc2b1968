// What follows a drag: the map goes on in the drag's direction and slows down exponentially.
#pragma once

#include "Platform/MapKit/MKMotion.h"

#include <optional>

namespace veyra {

class MKInertia final : public MKMotion {
public:
    /// Slower drags, in points a second, stop where they are let go.
    static constexpr double slowestSpeed = 30;

    /// `velocity` in points a second.
    explicit MKInertia(CGPoint velocity);

    bool step(double timestamp, CGSize viewSize, MKCamera& camera) override;
    void finish(CGSize viewSize, MKCamera& camera) override;
    bool changesScale() const override { return false; }

private:
    /// Moves the camera on to `travelled` seconds' worth of the initial speed.
    void advanceTo(double travelled, CGSize viewSize, MKCamera& camera);

    CGPoint _velocity;
    std::optional<double> _startTime;
    double _travelled = 0;
};

} // namespace veyra
