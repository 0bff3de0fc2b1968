#include "Platform/MapKit/MKInertia.h"

#include <cmath>

namespace veyra {

namespace {

// After this many seconds the speed is 1/e of what it was.
constexpr double decay = 0.325;
constexpr double fastestSpeed = 6000;

} // namespace

MKInertia::MKInertia(CGPoint velocity) : _velocity(velocity) {
    const double speed = std::hypot(velocity.x, velocity.y);
    if (speed > fastestSpeed) {
        _velocity = {velocity.x / speed * fastestSpeed, velocity.y / speed * fastestSpeed};
    }
}

bool MKInertia::step(double timestamp, CGSize viewSize, MKCamera& camera) {
    if (!_startTime) {
        _startTime = timestamp;
    }
    const double remaining = std::exp(-std::max(timestamp - *_startTime, 0.0) / decay);
    advanceTo(decay * (1 - remaining), viewSize, camera);
    return std::hypot(_velocity.x, _velocity.y) * remaining > slowestSpeed / 2;
}

void MKInertia::finish(CGSize viewSize, MKCamera& camera) {
    advanceTo(decay, viewSize, camera);
}

void MKInertia::advanceTo(double travelled, CGSize viewSize, MKCamera& camera) {
    const double more = travelled - _travelled;
    _travelled = travelled;
    camera = camera.movedBy(_velocity.x * more, _velocity.y * more).clamped(viewSize);
}

} // namespace veyra
