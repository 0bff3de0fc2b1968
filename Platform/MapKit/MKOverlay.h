// What a map can lay over the world: a shape with a place and an extent. A protocol; the map holds its overlays by
// shared ownership and asks its delegate for their views. Conforming objects do not change; any thread.
#pragma once

#include "Platform/MapKit/MKGeometry.h"

namespace veyra {

class MKOverlay {
public:
    MKOverlay() = default;
    MKOverlay(const MKOverlay&) = delete;
    MKOverlay& operator=(const MKOverlay&) = delete;
    virtual ~MKOverlay() = default;

    /// The middle of the overlay, in degrees.
    virtual CLLocationCoordinate2D coordinate() const = 0;
    /// The smallest rectangle around the shape itself, without the width of its line; null for a shape without places.
    /// It may run past the antimeridian.
    virtual MKMapRect boundingMapRect() const = 0;
};

} // namespace veyra
