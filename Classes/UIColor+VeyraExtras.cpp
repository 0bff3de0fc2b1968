#include "Classes/UIColor+VeyraExtras.h"

#include "Platform/Foundation/NSScanner.h"

namespace veyra {

namespace {

double componentOf(const id& digits) {
    uint32_t value = 0;
    if (const NSString* text = digits.string())
        NSScanner::scannerWithString(*text).scanHexInt(value);
    return value / 255.0;
}

} // namespace

std::shared_ptr<UIColor> _veyra_colorWithHexStringAlpha(const id& string, double alpha) {
    const id red = string.substringWithRange(0, 2);
    const id green = string.substringWithRange(2, 2);
    const id blue = string.substringWithRange(4, 2);
    return UIColor::initWithRedGreenBlueAlpha(componentOf(red), componentOf(green), componentOf(blue), alpha);
}

} // namespace veyra
