#include "Platform/MapKit/MKCamera.h"

#include <algorithm>
#include <cmath>

namespace veyra {

double MKCamera::minimumScale(CGSize viewSize) {
    return std::max(viewSize.width, viewSize.height) / MKWorldSide;
}

namespace {

// Relative; of the sides of a rectangle that went through degrees and back.
constexpr double sameShape = 1e-9;

/// The distance (map points) from the centre to the farther of the region's north and south edges. They lie at the same
/// number of degrees from it, but not at the same distance on the map: the one towards the pole is farther.
double farthestEdge(const MKCoordinateRegion& region, MKMapPoint center) {
    const double half = std::max(region.span.latitudeDelta, 0.0) / 2;
    const double north = MKMapPointForCoordinate({region.center.latitude + half, region.center.longitude}).y;
    const double south = MKMapPointForCoordinate({region.center.latitude - half, region.center.longitude}).y;
    return std::max(std::abs(center.y - north), std::abs(south - center.y));
}

} // namespace

MKCamera MKCamera::fitting(const MKCoordinateRegion& region, CGSize viewSize) {
    MKCamera camera;
    camera.center = MKMapPointForCoordinate(region.center);
    const MKMapRect rect = MKMapRectForCoordinateRegion(region);
    const double scaleX = viewSize.width / rect.size.width;
    const double scaleY = viewSize.height / rect.size.height;
    if (std::isfinite(scaleX) && std::abs(scaleX - scaleY) <= sameShape * scaleX) {
        // The region of a map rectangle of the view's shape, as the map reports it: it is shown as it was.
        camera.scale = scaleX;
    } else {
        // A side of 0 asks for an infinite scale; the limits take care of it.
        camera.scale = std::min(scaleX, viewSize.height / (2 * farthestEdge(region, camera.center)));
    }
    return camera.normalized().clamped(viewSize);
}

MKCamera MKCamera::clamped(CGSize viewSize) const {
    MKCamera result = *this;
    // A view of more than two points a map point is wider than any screen; the outermost limit would win.
    result.scale = std::max(std::min(scale, maximumScale), minimumScale(viewSize));
    const double halfHeight = viewSize.height / result.scale / 2;
    result.center.y = std::max(halfHeight, std::min(center.y, MKWorldSide - halfHeight));
    return result;
}

MKCamera MKCamera::normalized() const {
    MKCamera result = *this;
    double x = std::fmod(center.x, MKWorldSide);
    if (x < 0) {
        x += MKWorldSide;
    }
    // A tiny negative x rounds up to the whole side.
    result.center.x = x < MKWorldSide ? x : 0;
    return result;
}

MKCamera MKCamera::movedBy(double dx, double dy) const {
    return {{center.x - dx / scale, center.y - dy / scale}, scale};
}

MKCamera MKCamera::scaledTo(double newScale, CGPoint anchor, CGSize viewSize) const {
    MKCamera result = *this;
    result.scale = std::max(std::min(newScale, maximumScale), minimumScale(viewSize));
    const double change = 1 / scale - 1 / result.scale;
    result.center.x += (anchor.x - viewSize.width / 2) * change;
    result.center.y += (anchor.y - viewSize.height / 2) * change;
    return result.clamped(viewSize);
}

MKMapRect MKCamera::visibleMapRect(CGSize viewSize) const {
    const double width = viewSize.width / scale;
    const double height = viewSize.height / scale;
    return MKMapRectMake(center.x - width / 2, center.y - height / 2, width, height);
}

MKCoordinateRegion MKCamera::region(CGSize viewSize) const {
    MKCoordinateRegion region = MKCoordinateRegionForMapRect(visibleMapRect(viewSize));
    region.span.longitudeDelta = std::min(region.span.longitudeDelta, 360.0);
    return region;
}

MKMapPoint MKCamera::mapPointAt(CGPoint point, CGSize viewSize) const {
    return {center.x + (point.x - viewSize.width / 2) / scale, center.y + (point.y - viewSize.height / 2) / scale};
}

CGPoint MKCamera::pointFor(MKMapPoint mapPoint, CGSize viewSize) const {
    return {viewSize.width / 2 + (mapPoint.x - center.x) * scale,
            viewSize.height / 2 + (mapPoint.y - center.y) * scale};
}

} // namespace veyra
