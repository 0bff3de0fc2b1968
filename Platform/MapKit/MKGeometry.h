// The flat world: map points, map rectangles, and the ways between them and coordinates. Plain values and pure
// functions; any thread.
//
// The world is a square of 2^28 map points, origin at its north-west corner, x east, y south: the spherical Mercator
// projection between latitudes ±85.05112877980659. x is not wrapped: the world repeats east and west without end, and a
// map rectangle may run past the antimeridian.
#pragma once

#include "Platform/CoreLocation/CLLocation.h"

namespace veyra {

/// A place on the flat world, in map points.
struct MKMapPoint {
    double x = 0, y = 0;
    friend bool operator==(const MKMapPoint&, const MKMapPoint&) = default;
};

/// An extent in map points.
struct MKMapSize {
    double width = 0, height = 0;
    friend bool operator==(const MKMapSize&, const MKMapSize&) = default;
};

/// A rectangle in map points; the origin is its north-west corner.
struct MKMapRect {
    MKMapPoint origin;
    MKMapSize size;
    friend bool operator==(const MKMapRect&, const MKMapRect&) = default;
};

/// North-to-south and west-to-east extent in degrees.
struct MKCoordinateSpan {
    double latitudeDelta = 0, longitudeDelta = 0;
    friend bool operator==(const MKCoordinateSpan&, const MKCoordinateSpan&) = default;
};

/// A part of the world by its centre and its extent.
struct MKCoordinateRegion {
    CLLocationCoordinate2D center;
    MKCoordinateSpan span;
};

/// The side of the world in map points.
inline constexpr double MKWorldSide = 268435456;
/// The latitude at which the square ends, in degrees; the projection clamps to it.
inline constexpr double MKMaximumLatitude = 85.05112877980659;

inline constexpr MKMapSize MKMapSizeWorld{MKWorldSide, MKWorldSide};
inline constexpr MKMapRect MKMapRectWorld{{0, 0}, MKMapSizeWorld};
/// The rectangle that is nowhere: its origin lies at infinity, its size is 0.
extern const MKMapRect MKMapRectNull;

/// The projection. Latitudes beyond the square are clamped to its edge, longitudes are not wrapped, NaN stays NaN.
MKMapPoint MKMapPointForCoordinate(CLLocationCoordinate2D coordinate);
/// The inverse; x outside the world gives longitudes outside ±180.
CLLocationCoordinate2D MKCoordinateForMapPoint(MKMapPoint point);

/// Metres on the ground that one map point stands for at a latitude in degrees, along the meridian of the WGS84
/// ellipsoid.
double MKMetersPerMapPointAtLatitude(double latitude);
double MKMapPointsPerMeterAtLatitude(double latitude);

inline MKMapRect MKMapRectMake(double x, double y, double width, double height) {
    return {{x, y}, {width, height}};
}
inline double MKMapRectGetMinX(const MKMapRect& rect) {
    return rect.origin.x;
}
inline double MKMapRectGetMinY(const MKMapRect& rect) {
    return rect.origin.y;
}
inline double MKMapRectGetMidX(const MKMapRect& rect) {
    return rect.origin.x + rect.size.width / 2;
}
inline double MKMapRectGetMidY(const MKMapRect& rect) {
    return rect.origin.y + rect.size.height / 2;
}
inline double MKMapRectGetMaxX(const MKMapRect& rect) {
    return rect.origin.x + rect.size.width;
}
inline double MKMapRectGetMaxY(const MKMapRect& rect) {
    return rect.origin.y + rect.size.height;
}

/// True when the origin lies at infinity.
bool MKMapRectIsNull(const MKMapRect& rect);
/// True when the rectangle is null or both its sides are 0.
bool MKMapRectIsEmpty(const MKMapRect& rect);
/// The smallest rectangle around both; a null one adds nothing.
MKMapRect MKMapRectUnion(const MKMapRect& a, const MKMapRect& b);
/// What both have in common; null when they are apart. Rectangles that only touch are apart.
MKMapRect MKMapRectIntersection(const MKMapRect& a, const MKMapRect& b);
bool MKMapRectIntersectsRect(const MKMapRect& a, const MKMapRect& b);
/// The western and northern edges belong to the rectangle, the others do not.
bool MKMapRectContainsPoint(const MKMapRect& rect, MKMapPoint point);
/// True when `inner` lies wholly in `outer`, shared edges allowed; a null rectangle holds none and lies in none.
bool MKMapRectContainsRect(const MKMapRect& outer, const MKMapRect& inner);
/// Moves the edges inwards by dx on the left and right and dy at the top and bottom; negative values move them
/// outwards.
MKMapRect MKMapRectInset(const MKMapRect& rect, double dx, double dy);
MKMapRect MKMapRectOffset(const MKMapRect& rect, double dx, double dy);
/// True when the rectangle runs past the antimeridian on either side.
bool MKMapRectSpans180thMeridian(const MKMapRect& rect);

/// Centre: the unprojected midpoint; spans: the differences of the unprojected edges.
MKCoordinateRegion MKCoordinateRegionForMapRect(const MKMapRect& rect);
/// The inverse of MKCoordinateRegionForMapRect: the rectangle around the projected centre whose unprojected edges are
/// the spans apart. Spans count as 0 when negative and are cut off at 180 and 360 degrees; a latitude span that no
/// rectangle of finite height has gives the height of two worlds. NaN stays NaN.
MKMapRect MKMapRectForCoordinateRegion(const MKCoordinateRegion& region);
/// The corners of the region in degrees: half the spans north and west, and south and east, of the centre.
void MKCoordinatesForRegion(const MKCoordinateRegion& region, CLLocationCoordinate2D* northWest,
                            CLLocationCoordinate2D* southEast);

/// True when all four numbers are finite.
bool MKCoordinateRegionIsFinite(const MKCoordinateRegion& region);

} // namespace veyra
