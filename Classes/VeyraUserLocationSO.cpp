#include "Classes/VeyraUserLocationSO.h"

#include "Classes/VeyraConstants.h"
#include "Platform/Foundation/MethodBinding.h"

namespace veyra {

Class VeyraUserLocationSO::classObject() {
    static Class cls =
        new ClassObject("VeyraUserLocationSO", NSObject::classObject(),
                        {
                            bindMethod<&VeyraUserLocationSO::latitude>("latitude"),
                            bindMethod<&VeyraUserLocationSO::setLatitude>("setLatitude:"),
                            bindMethod<&VeyraUserLocationSO::longitude>("longitude"),
                            bindMethod<&VeyraUserLocationSO::setLongitude>("setLongitude:"),
                            bindMethod<&VeyraUserLocationSO::altitude>("altitude"),
                            bindMethod<&VeyraUserLocationSO::setAltitude>("setAltitude:"),
                            bindMethod<&VeyraUserLocationSO::horizontalAccuracy>("horizontalAccuracy"),
                            bindMethod<&VeyraUserLocationSO::setHorizontalAccuracy>("setHorizontalAccuracy:"),
                            bindMethod<&VeyraUserLocationSO::verticalAccuracy>("verticalAccuracy"),
                            bindMethod<&VeyraUserLocationSO::setVerticalAccuracy>("setVerticalAccuracy:"),
                        },
                        WebScripting{.isKeyExcludedFromWebScript = isKeyExcludedFromWebScript,
                                     .makeValueObject = []() -> std::shared_ptr<NSObject> {
                                         return std::make_shared<VeyraUserLocationSO>();
                                     }});
    return cls;
}

std::vector<NSString> VeyraUserLocationSO::attributeKeys() const {
    return {kOstrelUserLocationLatitude, kOstrelUserLocationLongitude, kOstrelUserLocationAltitude,
            kOstrelUserLocationHorizontalAccuracy, kOstrelUserLocationVerticalAccuracy};
}

} // namespace veyra
