#include "Platform/MapKit/MKWheelZoom.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace veyra {

namespace {

// After this many seconds 1/e of the way to the scale aimed at is left.
constexpr double following = 0.045;
// Zoom levels so few that the rest of the way is done at once.
constexpr double closeEnough = 0.002;
constexpr double levelsPerScrolledPoint = 0.4 / 110;
constexpr double mostLevelsPerScroll = 1.5;
// A stretch by e for 100 points. A wheel turned with the control key is a pinch too, by whole notches: hence the limit.
constexpr double levelsPerPinchedPoint = std::numbers::log2e / 100;
constexpr double mostLevelsPerPinch = 0.5;
// The first step after a turn has no frame before it to measure from.
constexpr double firstStep = 1.0 / 60;

} // namespace

double MKWheelZoom::levelsFor(const UIScrollEvent& event) {
    const double rate = event.pinches ? levelsPerPinchedPoint : levelsPerScrolledPoint;
    const double most = event.pinches ? mostLevelsPerPinch : mostLevelsPerScroll;
    return std::clamp(-event.deltaY * rate, -most, most);
}

void MKWheelZoom::turn(double levels, CGPoint anchor, CGSize viewSize) {
    _target = std::max(std::min(_target * std::exp2(levels), MKCamera::maximumScale), MKCamera::minimumScale(viewSize));
    _anchor = anchor;
    _arrived = false;
    _quietSince.reset();
}

bool MKWheelZoom::step(double timestamp, CGSize viewSize, MKCamera& camera) {
    const double elapsed = _lastStep ? std::max(timestamp - *_lastStep, 0.0) : firstStep;
    _lastStep = timestamp;
    if (!_quietSince) {
        _quietSince = timestamp;
    }
    if (!_arrived) {
        const double left = std::log2(_target / camera.scale) * std::exp(-elapsed / following);
        if (std::abs(left) < closeEnough) {
            finish(viewSize, camera);
        } else {
            camera = camera.scaledTo(_target / std::exp2(left), _anchor, viewSize);
        }
    }
    return !_arrived || timestamp - *_quietSince < quietTime;
}

void MKWheelZoom::finish(CGSize viewSize, MKCamera& camera) {
    camera = camera.scaledTo(_target, _anchor, viewSize);
    _arrived = true;
}

} // namespace veyra
