#include "Classes/VeyraLocationCoordinateSO.h"

#include "Classes/JSONFields.h"
#include "Classes/VeyraConstants.h"
#include "Platform/Foundation/MethodBinding.h"
#include "Platform/Foundation/NSLog.h"

#include <cmath>

namespace veyra {

Class VeyraLocationCoordinateSO::classObject() {
    static Class cls = new ClassObject("VeyraLocationCoordinateSO", NSObject::classObject(),
                                       {
                                           bindMethod<&VeyraLocationCoordinateSO::latitude>("latitude"),
                                           bindMethod<&VeyraLocationCoordinateSO::setLatitude>("setLatitude:"),
                                           bindMethod<&VeyraLocationCoordinateSO::longitude>("longitude"),
                                           bindMethod<&VeyraLocationCoordinateSO::setLongitude>("setLongitude:"),
                                       },
                                       WebScripting{.isKeyExcludedFromWebScript = isKeyExcludedFromWebScript,
                                                    .makeValueObject = []() -> std::shared_ptr<NSObject> {
                                                        return std::make_shared<VeyraLocationCoordinateSO>();
                                                    }});
    return cls;
}

std::vector<NSString> VeyraLocationCoordinateSO::attributeKeys() const {
    return {kOstrelCoordinateLatitude, kOstrelCoordinateLongitude};
}

std::shared_ptr<VeyraLocationCoordinateSO>
VeyraLocationCoordinateSO::withCoordinate(CLLocationCoordinate2D coordinate) {
    auto object = std::make_shared<VeyraLocationCoordinateSO>();
    object->setLatitude(coordinate.latitude);
    object->setLongitude(coordinate.longitude);
    return object;
}

std::shared_ptr<VeyraLocationCoordinateSO> VeyraLocationCoordinateSO::initWithJSON(const NSString& json) {
    auto object = std::make_shared<VeyraLocationCoordinateSO>();
    setFieldsFromJSON(*object, json);
    return object;
}

NSString VeyraLocationCoordinateSO::description() const {
    return NSStringWithFormat("{'latitude':%f,'longitude':%f}", {_latitude, _longitude});
}

bool VeyraLocationCoordinateSO::equalsCoordinateWithTolerance(const VeyraLocationCoordinateSO& other,
                                                              double tolerance) const {
    return std::abs(_latitude - other.latitude()) < tolerance && std::abs(_longitude - other.longitude()) < tolerance;
}

} // namespace veyra
