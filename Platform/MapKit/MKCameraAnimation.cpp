#include "Platform/MapKit/MKCameraAnimation.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

// How much a flight zooms out for its way; the value that the paper's viewers liked best.
constexpr double rho = 1.42;
// Centres that are at most this many of the wider view's diagonals apart are reached without a flight.
constexpr double nearDiagonals = 1;
// A flight's length, in the paper's metric, that takes one second more.
constexpr double flightSpeed = 8;

// A near movement answers at once and slows down, so that a key held down moves the map evenly; a flight also starts
// slowly.
double easedOut(double progress) {
    return 1 - std::pow(1 - progress, 3);
}
double easedInAndOut(double progress) {
    return progress < 0.5 ? 4 * progress * progress * progress : 1 - std::pow(2 - 2 * progress, 3) / 2;
}

} // namespace

MKFlightPath::MKFlightPath(double distance, double startWidth, double endWidth)
    : _distance(distance), _startWidth(startWidth) {
    const double rho2 = rho * rho, rho4 = rho2 * rho2;
    const double squares = endWidth * endWidth - startWidth * startWidth;
    const double far = rho4 * distance * distance;
    const auto r = [](double b) { return -std::asinh(b); }; // ln(sqrt(b^2 + 1) - b) without its cancellation
    _start = r((squares + far) / (2 * startWidth * rho2 * distance));
    const double end = r((squares - far) / (2 * endWidth * rho2 * distance));
    _length = (end - _start) / rho;
}

double MKFlightPath::travelled(double s) const {
    const double inner = std::cosh(_start) * std::tanh(rho * s + _start) - std::sinh(_start);
    return std::clamp(_startWidth / (rho * rho) * inner, 0.0, _distance);
}

double MKFlightPath::width(double s) const {
    return _startWidth * std::cosh(_start) / std::cosh(rho * s + _start);
}

MKCameraAnimation::MKCameraAnimation(const MKCamera& from, const MKCamera& to, CGSize viewSize, double duration)
    : _from(from), _to(to), _duration(duration) {
    _to.center.x -= std::round((to.center.x - from.center.x) / MKWorldSide) * MKWorldSide;
    const double distance = std::hypot(_to.center.x - from.center.x, _to.center.y - from.center.y);
    const double diagonal = std::hypot(viewSize.width, viewSize.height) / std::min(from.scale, to.scale);
    if (distance > nearDiagonals * diagonal) {
        const double side = std::max(viewSize.width, viewSize.height);
        _flight.emplace(distance, side / from.scale, side / to.scale);
        _duration = std::min(nearDuration + _flight->length() / flightSpeed, longestFlight);
    }
}

bool MKCameraAnimation::step(double timestamp, CGSize viewSize, MKCamera& camera) {
    if (!_startTime) {
        _startTime = timestamp;
    }
    const double progress = (timestamp - *_startTime) / _duration;
    if (!(progress < 1)) {
        finish(viewSize, camera);
        return false;
    }
    camera = at(_flight ? easedInAndOut(std::max(progress, 0.0)) : easedOut(std::max(progress, 0.0)), viewSize);
    return true;
}

void MKCameraAnimation::finish(CGSize viewSize, MKCamera& camera) {
    camera = _to.clamped(viewSize);
}

MKCamera MKCameraAnimation::at(double progress, CGSize viewSize) const {
    MKCamera camera;
    double way = progress; // share of the way from centre to centre
    if (_flight) {
        const double s = progress * _flight->length();
        const double distance = std::hypot(_to.center.x - _from.center.x, _to.center.y - _from.center.y);
        camera.scale = std::max(viewSize.width, viewSize.height) / _flight->width(s);
        way = _flight->travelled(s) / distance;
    } else {
        camera.scale = _from.scale * std::pow(_to.scale / _from.scale, progress);
        // With the scale changing, the way that keeps one point of the view on its coordinate: a zoom about that point.
        const double change = 1 / _to.scale - 1 / _from.scale;
        if (std::abs(std::log(_to.scale / _from.scale)) > 1e-6) {
            way = (1 / camera.scale - 1 / _from.scale) / change;
        }
    }
    camera.center = {_from.center.x + (_to.center.x - _from.center.x) * way,
                     _from.center.y + (_to.center.y - _from.center.y) * way};
    return camera.clamped(viewSize);
}

} // namespace veyra
