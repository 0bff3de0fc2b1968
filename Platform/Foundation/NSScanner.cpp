#include "Platform/Foundation/NSScanner.h"

#include "Platform/Foundation/Characters.h"

#include <algorithm>
#include <limits>

namespace veyra {
namespace {

/// The digit's value, or -1.
int hexDigit(char16_t unit) {
    if (isDigit(unit))
        return unit - u'0';
    if (unit >= u'a' && unit <= u'f')
        return unit - u'a' + 10;
    if (unit >= u'A' && unit <= u'F')
        return unit - u'A' + 10;
    return -1;
}

} // namespace

bool NSScanner::scanHexInt(uint32_t& value) {
    const std::u16string_view units = _string.units();
    const auto digitAt = [&](size_t place) { return place < units.size() ? hexDigit(units[place]) : -1; };

    size_t place = skipWhiteSpace(units, _location);
    const bool prefixed = digitAt(place) == 0 && place + 1 < units.size() && (units[place + 1] | 0x20) == u'x';
    if (prefixed && digitAt(place + 2) >= 0)
        place += 2; // without a digit behind it, the prefix is the number 0 and an x
    if (digitAt(place) < 0)
        return false;

    constexpr uint64_t largest = std::numeric_limits<uint32_t>::max();
    uint64_t number = 0;
    for (int digit = digitAt(place); digit >= 0; digit = digitAt(++place))
        number = std::min(largest, number * 16 + static_cast<uint64_t>(digit));
    value = static_cast<uint32_t>(number);
    _location = place;
    return true;
}

} // namespace veyra
