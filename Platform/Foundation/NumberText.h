// The text of numbers, the same in every locale. Any thread.
#pragma once

#include <string>

namespace veyra {

/// As C's `%0.16g`: "5", "-0", "0.1", "1e+20"; "nan", "inf" and "-inf".
std::string generalText(double number);
/// As C's `%f`: six decimals, no exponent.
std::string fixedText(double number);

} // namespace veyra
