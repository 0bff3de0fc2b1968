// A movement from one camera to another: eased along the shortest way east or west, and for far places a flight that
// zooms out and in again along the optimal path of van Wijk and Nuij ("Smooth and efficient zooming and panning",
// 2003).
#pragma once

#include "Platform/MapKit/MKMotion.h"

#include <optional>

namespace veyra {

/// The path of a flight: how far along the way and how wide the view is after a part of the path's length. Lengths are
/// in map points.
class MKFlightPath {
public:
    /// From a view of width `startWidth` to one of width `endWidth` whose middle is `distance` away.
    MKFlightPath(double distance, double startWidth, double endWidth);

    /// The length of the path in the metric of the paper, in which equal lengths look equally fast.
    double length() const { return _length; }
    /// How far the middle has come, from 0 to `distance`, after `s` from 0 to length().
    double travelled(double s) const;
    double width(double s) const;

private:
    double _distance, _startWidth;
    double _start = 0; // r0 of the paper
    double _length = 0;
};

class MKCameraAnimation final : public MKMotion {
public:
    /// Seconds of an eased movement that is no flight.
    static constexpr double nearDuration = 0.35;
    /// Seconds that a flight takes at most.
    static constexpr double longestFlight = 1.5;

    /// `duration` holds for near movements; a flight takes the time that its length asks for.
    MKCameraAnimation(const MKCamera& from, const MKCamera& to, CGSize viewSize, double duration = nearDuration);

    bool step(double timestamp, CGSize viewSize, MKCamera& camera) override;
    void finish(CGSize viewSize, MKCamera& camera) override;
    bool changesScale() const override { return _flight.has_value() || _from.scale != _to.scale; }

    /// Where the movement ends; the centre may lie in a neighbouring copy of the world.
    const MKCamera& target() const { return _to; }
    double duration() const { return _duration; }
    bool isFlight() const { return _flight.has_value(); }

private:
    MKCamera at(double progress, CGSize viewSize) const;

    const MKCamera _from;
    MKCamera _to;
    double _duration;
    std::optional<MKFlightPath> _flight;
    std::optional<double> _startTime;
};

} // namespace veyra
