// Classes of UTF-16 units that reading numbers out of text needs. Any thread.
#pragma once

#include <cstddef>
#include <string_view>

namespace veyra {

constexpr bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

/// Spaces, tabs and line ends, ASCII's and the other scripts'.
constexpr bool isWhiteSpace(char16_t unit) {
    return unit == u' ' || (unit >= 0x09 && unit <= 0x0d) || unit == 0x85 || unit == 0xa0 || unit == 0x1680 ||
           (unit >= 0x2000 && unit <= 0x200a) || unit == 0x2028 || unit == 0x2029 || unit == 0x202f || unit == 0x205f ||
           unit == 0x3000;
}

/// The first place from `place` on that holds no white space.
constexpr size_t skipWhiteSpace(std::u16string_view units, size_t place) {
    while (place < units.size() && isWhiteSpace(units[place]))
        ++place;
    return place;
}

} // namespace veyra
