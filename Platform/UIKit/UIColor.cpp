#include "Platform/UIKit/UIColor.h"

namespace veyra {

Class UIColor::classObject() {
    static ClassObject* const cls = new ClassObject("UIColor", NSObject::classObject(), {});
    return cls;
}

std::shared_ptr<UIColor> UIColor::colorWithWhiteAlpha(double white, double alpha) {
    return std::make_shared<UIColor>(white, white, white, alpha);
}

std::shared_ptr<UIColor> UIColor::initWithRedGreenBlueAlpha(double red, double green, double blue, double alpha) {
    return std::make_shared<UIColor>(red, green, blue, alpha);
}

bool UIColor::isEqual(const NSObject& other) const {
    if (this == &other)
        return true;
    const auto* color = dynamic_cast<const UIColor*>(&other);
    return color && _red == color->_red && _green == color->_green && _blue == color->_blue && _alpha == color->_alpha;
}

size_t UIColor::hash() const {
    size_t result = 0;
    for (const double component : {_red, _green, _blue, _alpha})
        result = result * 31 + std::hash<double>()(component);
    return result;
}

} // namespace veyra
