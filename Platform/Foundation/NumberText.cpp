#include "Platform/Foundation/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace veyra {
namespace {

std::string numberText(double number, std::chars_format format, int precision) {
    if (std::isnan(number))
        return "nan";
    std::array<char, 400> text; // the longest double has 309 digits before the point
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number, format, precision);
    return std::string(text.data(), end);
}

} // namespace

std::string generalText(double number) {
    return numberText(number, std::chars_format::general, 16);
}

std::string fixedText(double number) {
    return numberText(number, std::chars_format::fixed, 6);
}

} // namespace veyra
