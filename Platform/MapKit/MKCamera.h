// Where a map looks from: the map point in the middle of the view and the scale. Everything that is drawn follows from
// it. A plain value; any thread. The centre's x is not wrapped, so that a movement across the antimeridian is one
// movement; `normalized` brings it back into the world.
#pragma once

#include "Platform/MapKit/MKGeometry.h"
#include "Platform/UIKit/CGGeometry.h"

namespace veyra {

struct MKCamera {
    /// The innermost scale, in points per map point.
    static constexpr double maximumScale = 2;

    MKMapPoint center{MKWorldSide / 2, MKWorldSide / 2};
    double scale = 0; ///< points per map point
    friend bool operator==(const MKCamera&, const MKCamera&) = default;

    /// The camera of a view that shows a region: the centre stays, the whole region is visible, the span that is too
    /// small for the view is widened; then `clamped` and `normalized`. The size is not empty, the region is finite.
    static MKCamera fitting(const MKCoordinateRegion& region, CGSize viewSize);
    /// The outermost scale for a view: the world's side equals the view's longer side.
    static double minimumScale(CGSize viewSize);

    /// Within the limits: the scale between outermost and innermost, the centre so far from the poles that nothing
    /// beyond the square shows.
    MKCamera clamped(CGSize viewSize) const;
    /// The same view with the centre's x in the world, [0, MKWorldSide).
    MKCamera normalized() const;
    /// Moved so that the content under each point goes by (dx, dy) points to the right and down. Not clamped.
    MKCamera movedBy(double dx, double dy) const;
    /// At another scale, with the map point under `anchor` (view points) kept there; the new scale is kept within the
    /// limits first, the centre afterwards.
    MKCamera scaledTo(double newScale, CGPoint anchor, CGSize viewSize) const;

    MKMapRect visibleMapRect(CGSize viewSize) const;
    /// The longitude span is at most 360.
    MKCoordinateRegion region(CGSize viewSize) const;
    MKMapPoint mapPointAt(CGPoint point, CGSize viewSize) const;
    CGPoint pointFor(MKMapPoint mapPoint, CGSize viewSize) const;
};

} // namespace veyra
