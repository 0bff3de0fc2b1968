// The annotation that stands for the user's position. Owned by the map view; main queue only, but for `location`, which
// any thread may read.
#pragma once

#include "Platform/MapKit/MKAnnotation.h"

#include <mutex>

namespace veyra {

class MKUserLocation final : public MKAnnotation {
public:
    VEYRA_CLASS()

    /// The last position known, or null. The map shows a new one after MKMapView::annotationCoordinateDidChange.
    std::shared_ptr<const CLLocation> location() const;
    void setLocation(std::shared_ptr<const CLLocation> location);
    /// True while positions keep coming.
    bool isUpdating() const { return _updating; }
    void setUpdating(bool updating) { _updating = updating; }

    /// The location's; not a number before the first one, so that the annotation is shown nowhere.
    CLLocationCoordinate2D coordinate() const override;
    /// The radius of the circle in which the user is, in map points where the map shows the middle of it; two worlds at
    /// most, 0 when it is not known.
    double accuracyInMapPoints() const;
    /// The position is not the map's to change.
    void setCoordinate(CLLocationCoordinate2D) override {}
    /// "Current Location" until it is set.
    id title() const override { return _title; }
    void setTitle(const id& title) { _title = title; }
    id subtitle() const override { return _subtitle; }
    void setSubtitle(const id& subtitle) { _subtitle = subtitle; }

private:
    mutable std::mutex _mutex;
    std::shared_ptr<const CLLocation> _location; // guarded by _mutex
    bool _updating = false;
    id _title{NSString("Current Location")};
    id _subtitle;
};

} // namespace veyra
