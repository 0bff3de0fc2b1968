#include "Classes/VeyraRegionSO.h"

#include "Classes/JSONFields.h"
#include "Classes/VeyraConstants.h"
#include "Classes/WebScriptObject+VeyraExtras.h"
#include "Platform/Foundation/MethodBinding.h"
#include "Platform/Foundation/NSLog.h"

#include <cmath>

namespace veyra {

Class VeyraRegionSO::classObject() {
    static Class cls = new ClassObject("VeyraRegionSO", NSObject::classObject(),
                                       {
                                           bindMethod<&VeyraRegionSO::latitude>("latitude"),
                                           bindMethod<&VeyraRegionSO::setLatitude>("setLatitude:"),
                                           bindMethod<&VeyraRegionSO::longitude>("longitude"),
                                           bindMethod<&VeyraRegionSO::setLongitude>("setLongitude:"),
                                           bindMethod<&VeyraRegionSO::latitudeDelta>("latitudeDelta"),
                                           bindMethod<&VeyraRegionSO::setLatitudeDelta>("setLatitudeDelta:"),
                                           bindMethod<&VeyraRegionSO::longitudeDelta>("longitudeDelta"),
                                           bindMethod<&VeyraRegionSO::setLongitudeDelta>("setLongitudeDelta:"),
                                       },
                                       WebScripting{.isKeyExcludedFromWebScript = isKeyExcludedFromWebScript,
                                                    .makeValueObject = []() -> std::shared_ptr<NSObject> {
                                                        return std::make_shared<VeyraRegionSO>();
                                                    }});
    return cls;
}

std::vector<NSString> VeyraRegionSO::attributeKeys() const {
    return {kOstrelRegionLatitude, kOstrelRegionLongitude, kOstrelRegionLatitudeDelta, kOstrelRegionLongitudeDelta};
}

namespace {

// Upper bound first: a NaN is not less than it and becomes it.
double clamped(double value, double lower, double upper) {
    const double bounded = value < upper ? value : upper;
    return bounded < lower ? lower : bounded;
}

} // namespace

std::shared_ptr<VeyraRegionSO> VeyraRegionSO::withRegion(const MKCoordinateRegion& region) {
    auto object = std::make_shared<VeyraRegionSO>();
    object->setLatitude(region.center.latitude);
    object->setLongitude(region.center.longitude);
    object->setLatitudeDelta(region.span.latitudeDelta);
    object->setLongitudeDelta(region.span.longitudeDelta);
    return object;
}

MKCoordinateRegion VeyraRegionSO::MKCoordinateRegionWithWebScriptObject(NSObject& object) {
    MKCoordinateRegion region;
    region.span.latitudeDelta = clamped(geometryValueForKey(object, kOstrelRegionLatitudeDelta), 0, 180);
    region.span.longitudeDelta = clamped(geometryValueForKey(object, kOstrelRegionLongitudeDelta), 0, 360);
    region.center.latitude = clamped(geometryValueForKey(object, kOstrelRegionLatitude), -90, 90);
    region.center.longitude = clamped(geometryValueForKey(object, kOstrelRegionLongitude), -180, 180);
    return region;
}

std::shared_ptr<VeyraRegionSO> VeyraRegionSO::initWithJSON(const NSString& json) {
    auto object = std::make_shared<VeyraRegionSO>();
    setFieldsFromJSON(*object, json);
    return object;
}

NSString VeyraRegionSO::description() const {
    return NSStringWithFormat("{'latitude':%f,'longitude':%f,'latitudeDelta':%f,'longitudeDelta':%f}",
                              {_latitude, _longitude, _latitudeDelta, _longitudeDelta});
}

bool VeyraRegionSO::equalsRegionWithTolerance(const VeyraRegionSO& other, double tolerance) const {
    return std::abs(_latitude - other.latitude()) < tolerance && std::abs(_longitude - other.longitude()) < tolerance &&
           std::abs(_latitudeDelta - other.latitudeDelta()) < tolerance &&
           std::abs(_longitudeDelta - other.longitudeDelta()) < tolerance;
}

} // namespace veyra
