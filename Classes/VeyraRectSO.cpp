#include "Classes/VeyraRectSO.h"

#include "Classes/VeyraConstants.h"
#include "Platform/Foundation/MethodBinding.h"

namespace veyra {

Class VeyraRectSO::classObject() {
    static Class cls = new ClassObject(
        "VeyraRectSO", NSObject::classObject(),
        {
            bindMethod<&VeyraRectSO::x>("x"),
            bindMethod<&VeyraRectSO::setX>("setX:"),
            bindMethod<&VeyraRectSO::y>("y"),
            bindMethod<&VeyraRectSO::setY>("setY:"),
            bindMethod<&VeyraRectSO::width>("width"),
            bindMethod<&VeyraRectSO::setWidth>("setWidth:"),
            bindMethod<&VeyraRectSO::height>("height"),
            bindMethod<&VeyraRectSO::setHeight>("setHeight:"),
        },
        WebScripting{.isKeyExcludedFromWebScript = isKeyExcludedFromWebScript,
                     .makeValueObject = []() -> std::shared_ptr<NSObject> { return std::make_shared<VeyraRectSO>(); }});
    return cls;
}

std::vector<NSString> VeyraRectSO::attributeKeys() const {
    return {kOstrelRectX, kOstrelRectY, kOstrelRectWidth, kOstrelRectHeight};
}

std::shared_ptr<VeyraRectSO> VeyraRectSO::withRect(const CGRect& rect) {
    auto object = std::make_shared<VeyraRectSO>();
    object->setX(rect.origin.x);
    object->setY(rect.origin.y);
    object->setWidth(rect.size.width);
    object->setHeight(rect.size.height);
    return object;
}

} // namespace veyra
