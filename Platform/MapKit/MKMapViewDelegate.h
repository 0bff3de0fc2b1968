// What a map view reports. Main queue only. Not owned by the map view; every method may be left out.
#pragma once

#include "Platform/Foundation/NSError.h"

#include <memory>
#include <vector>

namespace veyra {

class MKMapView;
class MKOverlay;
class MKOverlayView;

class MKMapViewDelegate {
public:
    virtual ~MKMapViewDelegate() = default;

    /// The view needs map data that it does not hold.
    virtual void mapViewWillStartLoadingMap(MKMapView&) {}
    /// All that was missing is drawn.
    virtual void mapViewDidFinishLoadingMap(MKMapView&) {}
    /// A source failed; once for everything that was being loaded together.
    virtual void mapViewDidFailLoadingMapWithError(MKMapView&, const std::shared_ptr<NSError>&) {}

    /// What the map shows is about to change, by a request, a gesture or a new size. One pair for each change: a
    /// gesture with its inertia is one. `animated` tells whether frames of a movement lie between the two.
    virtual void mapViewRegionWillChangeAnimated(MKMapView&, bool /*animated*/) {}
    /// The change has ended; the centre's longitude is in [-180, 180).
    virtual void mapViewRegionDidChangeAnimated(MKMapView&, bool /*animated*/) {}

    /// An overlay has come into sight for the first time since it was added: how is it drawn? Null: not at all.
    virtual std::shared_ptr<MKOverlayView> mapViewViewForOverlay(MKMapView&, const std::shared_ptr<MKOverlay>&) {
        return nullptr;
    }
    /// Overlays' views have been added, in drawing order; never an empty list.
    virtual void mapViewDidAddOverlayViews(MKMapView&, const std::vector<std::shared_ptr<MKOverlayView>>&) {}
};

} // namespace veyra
