// What a map view shows at a coordinate: the base of the classes of annotations, which are told apart by identity. A
// map view keeps its annotations alive. The map asks and sets on the main queue only.
#pragma once

#include "Platform/CoreLocation/CLLocation.h"

#include <cstdint>

namespace veyra {

class MKAnnotation : public NSObject {
public:
    /// Degrees. Read when the annotation is added. One that is not finite is nowhere: it has no view.
    virtual CLLocationCoordinate2D coordinate() const = 0;
    /// Called by the map while the user drags the annotation. A coordinate that is changed by others is seen by the map
    /// after MKMapView::annotationCoordinateDidChange.
    virtual void setCoordinate(CLLocationCoordinate2D coordinate) = 0;
    /// The first and the second line of the callout; nil for none. What is no string is shown by its text form.
    virtual id title() const { return {}; }
    virtual id subtitle() const { return {}; }

private:
    friend class MKAnnotationStore;
    // Under which a map has it: the first one, should there be several.
    uint32_t _number = UINT32_MAX;
};

} // namespace veyra
