#include "Platform/MapKit/MKGeometry.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace veyra {

namespace {

constexpr double radiansPerDegree = std::numbers::pi / 180;
constexpr double infinity = std::numeric_limits<double>::infinity();

// WGS84: the equatorial radius in metres and the square of the first eccentricity.
constexpr double equatorialRadius = 6378137;
constexpr double eccentricitySquared = 6.69437999014131699613723354004e-3;

} // namespace

const MKMapRect MKMapRectNull{{infinity, infinity}, {0, 0}};

MKMapPoint MKMapPointForCoordinate(CLLocationCoordinate2D coordinate) {
    const double latitude = std::isnan(coordinate.latitude)
                                ? coordinate.latitude
                                : std::clamp(coordinate.latitude, -MKMaximumLatitude, MKMaximumLatitude);
    const double sine = std::sin(latitude * radiansPerDegree);
    const double y = MKWorldSide * (0.5 - std::log((1 + sine) / (1 - sine)) / (4 * std::numbers::pi));
    return {(coordinate.longitude + 180) / 360 * MKWorldSide, y};
}

CLLocationCoordinate2D MKCoordinateForMapPoint(MKMapPoint point) {
    const double latitude = std::atan(std::sinh(std::numbers::pi * (1 - 2 * point.y / MKWorldSide)));
    return CLLocationCoordinate2DMake(latitude / radiansPerDegree, 360 * point.x / MKWorldSide - 180);
}

double MKMetersPerMapPointAtLatitude(double latitude) {
    const double angle = latitude * radiansPerDegree;
    const double sine = std::sin(angle);
    const double meridian =
        equatorialRadius * (1 - eccentricitySquared) / std::pow(1 - eccentricitySquared * sine * sine, 1.5);
    return meridian * std::cos(angle) * 2 * std::numbers::pi / MKWorldSide;
}

double MKMapPointsPerMeterAtLatitude(double latitude) {
    return 1 / MKMetersPerMapPointAtLatitude(latitude);
}

bool MKMapRectIsNull(const MKMapRect& rect) {
    return std::isinf(rect.origin.x) || std::isinf(rect.origin.y);
}

bool MKMapRectIsEmpty(const MKMapRect& rect) {
    return MKMapRectIsNull(rect) || (rect.size.width == 0 && rect.size.height == 0);
}

MKMapRect MKMapRectUnion(const MKMapRect& a, const MKMapRect& b) {
    if (MKMapRectIsNull(a)) {
        return b;
    }
    if (MKMapRectIsNull(b)) {
        return a;
    }
    const double minX = std::min(a.origin.x, b.origin.x);
    const double minY = std::min(a.origin.y, b.origin.y);
    return MKMapRectMake(minX, minY, std::max(MKMapRectGetMaxX(a), MKMapRectGetMaxX(b)) - minX,
                         std::max(MKMapRectGetMaxY(a), MKMapRectGetMaxY(b)) - minY);
}

MKMapRect MKMapRectIntersection(const MKMapRect& a, const MKMapRect& b) {
    if (!MKMapRectIntersectsRect(a, b)) {
        return MKMapRectNull;
    }
    const double minX = std::max(a.origin.x, b.origin.x);
    const double minY = std::max(a.origin.y, b.origin.y);
    return MKMapRectMake(minX, minY, std::min(MKMapRectGetMaxX(a), MKMapRectGetMaxX(b)) - minX,
                         std::min(MKMapRectGetMaxY(a), MKMapRectGetMaxY(b)) - minY);
}

bool MKMapRectIntersectsRect(const MKMapRect& a, const MKMapRect& b) {
    if (MKMapRectIsNull(a) || MKMapRectIsNull(b)) {
        return false;
    }
    return a.origin.x < MKMapRectGetMaxX(b) && b.origin.x < MKMapRectGetMaxX(a) && a.origin.y < MKMapRectGetMaxY(b) &&
           b.origin.y < MKMapRectGetMaxY(a);
}

bool MKMapRectContainsPoint(const MKMapRect& rect, MKMapPoint point) {
    return !MKMapRectIsNull(rect) && point.x >= rect.origin.x && point.x < MKMapRectGetMaxX(rect) &&
           point.y >= rect.origin.y && point.y < MKMapRectGetMaxY(rect);
}

bool MKMapRectContainsRect(const MKMapRect& outer, const MKMapRect& inner) {
    return !MKMapRectIsNull(outer) && !MKMapRectIsNull(inner) && inner.origin.x >= outer.origin.x &&
           inner.origin.y >= outer.origin.y && MKMapRectGetMaxX(inner) <= MKMapRectGetMaxX(outer) &&
           MKMapRectGetMaxY(inner) <= MKMapRectGetMaxY(outer);
}

MKMapRect MKMapRectInset(const MKMapRect& rect, double dx, double dy) {
    return MKMapRectMake(rect.origin.x + dx, rect.origin.y + dy, rect.size.width - 2 * dx, rect.size.height - 2 * dy);
}

MKMapRect MKMapRectOffset(const MKMapRect& rect, double dx, double dy) {
    return MKMapRectMake(rect.origin.x + dx, rect.origin.y + dy, rect.size.width, rect.size.height);
}

bool MKMapRectSpans180thMeridian(const MKMapRect& rect) {
    return !MKMapRectIsNull(rect) && (rect.origin.x < 0 || MKMapRectGetMaxX(rect) > MKWorldSide);
}

MKCoordinateRegion MKCoordinateRegionForMapRect(const MKMapRect& rect) {
    const CLLocationCoordinate2D northWest = MKCoordinateForMapPoint(rect.origin);
    const CLLocationCoordinate2D southEast = MKCoordinateForMapPoint({MKMapRectGetMaxX(rect), MKMapRectGetMaxY(rect)});
    return {MKCoordinateForMapPoint({MKMapRectGetMidX(rect), MKMapRectGetMidY(rect)}),
            {northWest.latitude - southEast.latitude, southEast.longitude - northWest.longitude}};
}

MKMapRect MKMapRectForCoordinateRegion(const MKCoordinateRegion& region) {
    const MKMapPoint center = MKMapPointForCoordinate(region.center);
    // Measured from the equator in radians of the projection, two latitudes symmetric about c at a distance h differ by
    // 2 atan(sinh h / cosh c); solved for h.
    const double c = std::numbers::pi * (1 - 2 * center.y / MKWorldSide);
    const double halfSpan = std::clamp(region.span.latitudeDelta, 0.0, 180.0) / 2 * radiansPerDegree;
    const double h = std::asinh(std::cosh(c) * std::tan(halfSpan));
    const double height = std::min(h / std::numbers::pi * MKWorldSide, 2 * MKWorldSide);
    const double width = std::clamp(region.span.longitudeDelta, 0.0, 360.0) / 360 * MKWorldSide;
    return MKMapRectMake(center.x - width / 2, center.y - height / 2, width, height);
}

void MKCoordinatesForRegion(const MKCoordinateRegion& region, CLLocationCoordinate2D* northWest,
                            CLLocationCoordinate2D* southEast) {
    const double halfLatitude = region.span.latitudeDelta / 2;
    const double halfLongitude = region.span.longitudeDelta / 2;
    *northWest =
        CLLocationCoordinate2DMake(region.center.latitude + halfLatitude, region.center.longitude - halfLongitude);
    *southEast =
        CLLocationCoordinate2DMake(region.center.latitude - halfLatitude, region.center.longitude + halfLongitude);
}

bool MKCoordinateRegionIsFinite(const MKCoordinateRegion& region) {
    return std::isfinite(region.center.latitude) && std::isfinite(region.center.longitude) &&
           std::isfinite(region.span.latitudeDelta) && std::isfinite(region.span.longitudeDelta);
}

} // namespace veyra
