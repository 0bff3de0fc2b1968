// The decimal number at the front of a string.
#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/NSString.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>

namespace veyra {
namespace {

/// Digits beyond this many cannot change how a double rounds, except by being something other than zero.
constexpr size_t significantDigits = 770;
/// Beyond any exponent that a text in memory can make up for with its digits.
constexpr int64_t exponentLimit = 100'000'000'000'000'000;

/// A decimal number as its text gives it: 0.DIGITS times ten to the power of `exponent`.
struct Decimal {
    bool negative = false;
    std::string digits; // without leading zeros; empty for zero
    int64_t exponent = 0;
};

class DecimalReader {
public:
    explicit DecimalReader(std::u16string_view units) : _units(units) {}

    Decimal read() {
        _place = skipWhiteSpace(_units, 0);
        if (unit() == u'-' || unit() == u'+')
            _decimal.negative = _units[_place++] == u'-';
        const size_t start = _place;
        readDigits(1);
        size_t digitCount = _place - start;
        if (unit() == u'.') {
            const size_t point = ++_place;
            readDigits(0);
            digitCount += _place - point;
        }
        if (digitCount > 0)
            readExponent();
        if (_restIsNotZero)
            _decimal.digits += '1';
        return _decimal;
    }

private:
    char16_t unit() const { return _place < _units.size() ? _units[_place] : u'\0'; }

    /// Takes digits; `integerStep` is 1 before the point and 0 behind it.
    void readDigits(int integerStep) {
        for (; isDigit(unit()); ++_place) {
            const bool leading = _decimal.digits.empty() && unit() == u'0';
            if (leading)
                _decimal.exponent += integerStep - 1;
            else
                _decimal.exponent += integerStep;
            if (leading)
                continue;
            if (_decimal.digits.size() < significantDigits)
                _decimal.digits += static_cast<char>(unit());
            else
                _restIsNotZero |= unit() != u'0';
        }
    }

    void readExponent() {
        if ((unit() | 0x20) != u'e')
            return;
        ++_place;
        const bool negative = unit() == u'-';
        if (negative || unit() == u'+')
            ++_place;
        int64_t exponent = 0;
        for (; isDigit(unit()); ++_place)
            if (exponent < exponentLimit)
                exponent = exponent * 10 + (unit() - u'0');
        _decimal.exponent += negative ? -exponent : exponent;
    }

    const std::u16string_view _units;
    size_t _place = 0;
    bool _restIsNotZero = false;
    Decimal _decimal;
};

/// The double nearest to the magnitude; infinite beyond the range of doubles.
double nearestDouble(const Decimal& decimal) {
    if (decimal.digits.empty() || decimal.exponent < -323)
        return 0;
    if (decimal.exponent > 309)
        return HUGE_VAL;
    const std::string text = "0." + decimal.digits + "e" + std::to_string(decimal.exponent);
    double result = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
    if (error == std::errc::result_out_of_range)
        return decimal.exponent > 0 ? HUGE_VAL : 0;
    return result;
}

} // namespace

double NSString::doubleValue() const {
    const Decimal decimal = DecimalReader(units()).read();
    const double magnitude = nearestDouble(decimal);
    return decimal.negative ? -magnitude : magnitude;
}

} // namespace veyra
