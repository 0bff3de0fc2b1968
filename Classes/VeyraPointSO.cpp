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

std::shared_ptr<VeyraPointSO> VeyraPointSO::withPoint(CGPoint point) {
    auto object = std::make_shared<VeyraPointSO>();
    object->setX(point.x);
    object->setY(point.y);
    return object;
}

} // namespace veyra
