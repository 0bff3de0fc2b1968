#include "Platform/MapKit/MKCircle.h"

#include <algorithm>
#include <cmath>

namespace veyra {

namespace {

double mapRadiusOf(MKMapPoint center, double latitude, double radius) {
    // The projection ends at the square's edge, and so does its scale.
    const double onMap = std::clamp(latitude, -MKMaximumLatitude, MKMaximumLatitude);
    const double inMapPoints = radius * MKMapPointsPerMeterAtLatitude(onMap);
    const bool isSomewhere =
        std::isfinite(center.x) && std::isfinite(center.y) && std::isfinite(inMapPoints) && radius >= 0;
    return isSomewhere ? inMapPoints : -1;
}

} // namespace

Class MKCircle::classObject() {
    static auto* const cls = new ClassObject("MKCircle", MKShape::classObject(), {});
    return cls;
}

MKCircle::MKCircle(CLLocationCoordinate2D center, double radius)
    : _center(center), _radius(radius), _centerMapPoint(MKMapPointForCoordinate(center)),
      _mapRadius(mapRadiusOf(_centerMapPoint, center.latitude, radius)) {}

std::shared_ptr<MKCircle> MKCircle::circleWithCenterCoordinateRadius(CLLocationCoordinate2D center, double radius) {
    return std::make_shared<MKCircle>(center, radius);
}

MKMapRect MKCircle::boundingMapRect() const {
    if (_mapRadius < 0) {
        return MKMapRectNull;
    }
    return MKMapRectMake(_centerMapPoint.x - _mapRadius, _centerMapPoint.y - _mapRadius, 2 * _mapRadius,
                         2 * _mapRadius);
}

} // namespace veyra
