#include "Classes/VeyraPointSO.h"

#include "Classes/VeyraConstants.h"
#include "Platform/Foundation/MethodBinding.h"

namespace veyra {

Class VeyraPointSO::classObject() {
    static Class cls = new ClassObject("VeyraPointSO", NSObject::classObject(),
                                       {
                                           bindMethod<&VeyraPointSO::x>("x"),
                                           bindMethod<&VeyraPointSO::setX>("setX:"),
                                           bindMethod<&VeyraPointSO::y>("y"),
                                           bindMethod<&VeyraPointSO::setY>("setY:"),
                                       },
                                       WebScripting{.isKeyExcludedFromWebScript = isKeyExcludedFromWebScript,
                                                    .makeValueObject = []() -> std::shared_ptr<NSObject> {
                                                        return std::make_shared<VeyraPointSO>();
                                                    }});
    return cls;
}

std::vector<NSString> VeyraPointSO::attributeKeys() const {
    return {kOstrelPointX, kOstrelPointY};
}

} // namespace veyra
