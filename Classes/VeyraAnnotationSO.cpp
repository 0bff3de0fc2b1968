#include "Classes/VeyraAnnotationSO.h"

#include "Classes/VeyraConstants.h"

namespace veyra {

namespace {

/// The words are exact; every other one is red.
uint64_t pinColorFrom(const id& word) {
    static const auto& green = *new NSString("green");
    static const auto& purple = *new NSString("purple");
    if (word.isEqualToString(green))
        return 1;
    return word.isEqualToString(purple) ? 2 : 0;
}

} // namespace

Class VeyraAnnotationSO::classObject() {
    static Class cls = new ClassObject("VeyraAnnotationSO", NSObject::classObject(), {});
    return cls;
}

std::shared_ptr<VeyraAnnotationSO> VeyraAnnotationSO::initWithWebScriptObject(NSObject& object) {
    auto record = std::make_shared<VeyraAnnotationSO>();
    record->_coordinate.latitude = object.valueForKey(kOstrelAnnotationLatitude).doubleValue();
    record->_coordinate.longitude = object.valueForKey(kOstrelAnnotationLongitude).doubleValue();
    record->_identifier = object.valueForKey(kOstrelAnnotationIdentifier);
    record->_title = object.valueForKey(kOstrelAnnotationTitle);
    record->_subtitle = object.valueForKey(kOstrelAnnotationSubtitle);
    record->_imageURLString = object.valueForKey(kOstrelAnnotationImageURL);
    // Single precision: pages see the same offsets everywhere.
    record->_centerOffset.x = object.valueForKey(kOstrelAnnotationXOffset).floatValue();
    record->_centerOffset.y = object.valueForKey(kOstrelAnnotationYOffset).floatValue();
    record->_hasLeftCalloutButton = object.valueForKey(kOstrelAnnotationHasLeftCallout).boolValue();
    record->_hasRightCalloutButton = object.valueForKey(kOstrelAnnotationHasRightCallout).boolValue();
    record->_pinColor = pinColorFrom(object.valueForKey(kOstrelAnnotationPinColor));
    const id animatesDrop = object.valueForKey(kOstrelAnnotationPinAnimatesDrop);
    record->_animatesDrop = animatesDrop.isNil() || animatesDrop.boolValue();
    record->_draggable = object.valueForKey(kOstrelAnnotationIsDraggable).boolValue();
    return record;
}

std::shared_ptr<VeyraAnnotationSO>
VeyraAnnotationSO::initDroppedPinAtCoordinateTitleIdentifier(CLLocationCoordinate2D coordinate, const id& title,
                                                             const id& identifier) {
    auto record = std::make_shared<VeyraAnnotationSO>();
    record->_coordinate = coordinate;
    record->_title = title;
    record->_identifier = identifier;
    record->_pinColor = 2;
    record->_draggable = true;
    return record;
}

} // namespace veyra
