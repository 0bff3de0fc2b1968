// A place on the earth as a location provider reports it, and the coordinate pair that the whole system shares. Values;
// any thread.
#pragma once

#include "Platform/Foundation/NSObject.h"

namespace veyra {

/// Degrees, WGS84: latitude north, longitude east. Nothing is checked or wrapped.
struct CLLocationCoordinate2D {
    double latitude = 0;
    double longitude = 0;
};

inline CLLocationCoordinate2D CLLocationCoordinate2DMake(double latitude, double longitude) {
    return {latitude, longitude};
}

/// Immutable.
class CLLocation final : public NSObject {
public:
    VEYRA_CLASS()
    /// Metres: altitude above sea level, accuracies as radii. A negative accuracy says that what it belongs to is not
    /// known.
    CLLocation(CLLocationCoordinate2D coordinate, double altitude, double horizontalAccuracy, double verticalAccuracy);

    CLLocationCoordinate2D coordinate() const { return _coordinate; }
    double altitude() const { return _altitude; }
    double horizontalAccuracy() const { return _horizontalAccuracy; }
    double verticalAccuracy() const { return _verticalAccuracy; }

private:
    const CLLocationCoordinate2D _coordinate;
    const double _altitude;
    const double _horizontalAccuracy;
    const double _verticalAccuracy;
};

} // namespace veyra
