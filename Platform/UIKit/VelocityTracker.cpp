#include "Platform/UIKit/VelocityTracker.h"

namespace veyra {

void VelocityTracker::add(double timestamp, CGPoint position) {
    if (!_samples.empty() && timestamp <= _samples.back().timestamp) {
        _samples.back().position = position;
        return;
    }
    _samples.push_back({timestamp, position});
    // One sample at or before the start of the window stays, to interpolate from.
    while (_samples.size() > 2 && _samples[1].timestamp <= timestamp - window)
        _samples.pop_front();
}

CGPoint VelocityTracker::velocity() const {
    if (_samples.size() < 2)
        return {};
    const Sample& last = _samples.back();
    Sample first = _samples.front();
    const double start = last.timestamp - window;
    if (first.timestamp < start) {
        const Sample& next = _samples[1];
        const double part = (start - first.timestamp) / (next.timestamp - first.timestamp);
        first = {start,
                 {first.position.x + part * (next.position.x - first.position.x),
                  first.position.y + part * (next.position.y - first.position.y)}};
    }
    const double duration = last.timestamp - first.timestamp;
    return {(last.position.x - first.position.x) / duration, (last.position.y - first.position.y) / duration};
}

} // namespace veyra
