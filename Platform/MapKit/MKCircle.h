// A circle around a coordinate. The radius is in metres on the ground; on the flat map the circle is round, as large as
// the scale at its centre makes it. Immutable; any thread.
#pragma once

#include "Platform/MapKit/MKShape.h"

namespace veyra {

class MKCircle : public MKShape {
public:
    VEYRA_CLASS()
    /// Any numbers are taken: a radius that is negative or not finite, or a centre that has no place on the map, makes
    /// a circle that is nowhere.
    MKCircle(CLLocationCoordinate2D center, double radius);
    static std::shared_ptr<MKCircle> circleWithCenterCoordinateRadius(CLLocationCoordinate2D center, double radius);

    /// The centre, as given.
    CLLocationCoordinate2D coordinate() const override { return _center; }
    /// Metres, as given.
    double radius() const { return _radius; }
    MKMapRect boundingMapRect() const override;

    MKMapPoint centerMapPoint() const { return _centerMapPoint; }
    /// The radius in map points; negative when the circle is nowhere.
    double mapRadius() const { return _mapRadius; }

private:
    const CLLocationCoordinate2D _center;
    const double _radius;
    const MKMapPoint _centerMapPoint;
    const double _mapRadius;
};

} // namespace veyra
