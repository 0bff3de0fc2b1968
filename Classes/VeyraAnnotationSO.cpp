#include "Classes/VeyraAnnotationSO.h"

#include "Classes/VeyraConstants.h"

namespace veyra {

namespace {

/// The words are exact; every other one is red.
uint8_t pinColorFrom(const id& word) {
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
    record->setSubtitle(object.valueForKey(kOstrelAnnotationSubtitle));
    record->setImageURLString(object.valueForKey(kOstrelAnnotationImageURL));
    // Single precision: pages see the same offsets everywhere.
    const double xOffset = object.valueForKey(kOstrelAnnotationXOffset).floatValue();
    const double yOffset = object.valueForKey(kOstrelAnnotationYOffset).floatValue();
    record->setCenterOffset({xOffset, yOffset});
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

const VeyraAnnotationSO::Extras& VeyraAnnotationSO::extras() const {
    static const auto& none = *new Extras();
    return _extras ? *_extras : none;
}

VeyraAnnotationSO::Extras& VeyraAnnotationSO::changedExtras() {
    if (!_extras)
        _extras = std::make_unique<Extras>();
    return *_extras;
}

void VeyraAnnotationSO::setSubtitle(const id& subtitle) {
    if (_extras || !subtitle.isNil())
        changedExtras().subtitle = subtitle;
}

void VeyraAnnotationSO::setImageURLString(const id& string) {
    if (_extras || !string.isNil())
        changedExtras().imageURLString = string;
}

void VeyraAnnotationSO::setCenterOffset(CGPoint offset) {
    if (_extras || !(offset == CGPoint()))
        changedExtras().centerOffset = offset;
}

} // namespace veyra
