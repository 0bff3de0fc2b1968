// What a map view reports. Main queue only. Not owned by the map view; every method may be left out.
#pragma once

#include "Platform/Foundation/NSError.h"
#include "Platform/MapKit/MKAnnotationView.h"

#include <memory>
#include <vector>

namespace veyra {

class MKMapView;
class MKUserLocation;
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

    /// The map begins to follow the user.
    virtual void mapViewWillStartLocatingUser(MKMapView&) {}
    /// The user's location was found, or has changed.
    virtual void mapViewDidUpdateUserLocation(MKMapView&, const std::shared_ptr<MKUserLocation>&) {}
    /// The map follows the user no more. Not sent after a failure.
    virtual void mapViewDidStopLocatingUser(MKMapView&) {}
    /// The user cannot be located now. A position that follows is reported as an update.
    virtual void mapViewDidFailToLocateUserWithError(MKMapView&, const std::shared_ptr<NSError>&) {}

    // Annotations. A delegate may add, remove and select annotations while it is being told or asked.

    /// The view for an annotation that comes into the visible area or near it; inside the call that adds it, where it
    /// is added there. Null: a red pin, or for the user's location the blue dot with its circle of accuracy.
    virtual std::shared_ptr<MKAnnotationView> mapViewViewForAnnotation(MKMapView&,
                                                                       const std::shared_ptr<MKAnnotation>&) {
        return nullptr;
    }
    /// Views were put on the map: one report for all that were added before the main queue ran dry or a frame was due,
    /// in the order in which they were added.
    virtual void mapViewDidAddAnnotationViews(MKMapView&, const std::vector<std::shared_ptr<MKAnnotationView>>&) {}
    virtual void mapViewDidSelectAnnotationView(MKMapView&, const std::shared_ptr<MKAnnotationView>&) {}
    virtual void mapViewDidDeselectAnnotationView(MKMapView&, const std::shared_ptr<MKAnnotationView>&) {}
    /// A button of the callout was tapped, or chosen by a key.
    virtual void mapViewAnnotationViewCalloutAccessoryControlTapped(MKMapView&,
                                                                    const std::shared_ptr<MKAnnotationView>&,
                                                                    const std::shared_ptr<UIView>& /*control*/) {}
    /// Each stage of a drag; the annotation has its new coordinate when the state is "ending".
    virtual void mapViewAnnotationViewDidChangeDragStateFromOldState(MKMapView&,
                                                                     const std::shared_ptr<MKAnnotationView>&,
                                                                     MKAnnotationViewDragState /*state*/,
                                                                     MKAnnotationViewDragState /*oldState*/) {}
    /// An overlay has come into sight for the first time since it was added: how is it drawn? Null: not at all.
    virtual std::shared_ptr<MKOverlayView> mapViewViewForOverlay(MKMapView&, const std::shared_ptr<MKOverlay>&) {
        return nullptr;
    }
    /// Overlays' views have been added, in drawing order; never an empty list.
    virtual void mapViewDidAddOverlayViews(MKMapView&, const std::vector<std::shared_ptr<MKOverlayView>>&) {}
};

} // namespace veyra
