// An immutable string of UTF-16 code units. Copies share the text; the hash is computed once. What the script engine
// hands over comes back unit for unit, lone surrogates included. Any thread may use any copy.
#pragma once

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

namespace veyra {

class NSString {
public:
    /// The empty string.
    NSString();
    /// From UTF-8; malformed sequences become U+FFFD.
    NSString(const char* utf8); // NOLINT(google-explicit-constructor): literals name keys, events and selectors
    explicit NSString(std::string_view utf8);
    explicit NSString(std::u16string_view units);

    /// Number of UTF-16 code units.
    size_t length() const { return _data->text.size(); }
    bool isEmpty() const { return _data->text.empty(); }
    std::u16string_view units() const { return _data->text; }

    /// UTF-8; a lone surrogate becomes U+FFFD.
    std::string utf8() const;

    /// The units [location, location + length). Throws NSException (NSRangeException) when that runs past the end.
    NSString substringWithRange(size_t location, size_t length) const;
    /// Every occurrence of the unit `from` replaced by `to`.
    NSString stringByReplacingUnit(char16_t from, char16_t to) const;

    /// Leading white space, then the longest decimal number (sign, digits, point, exponent; no hexadecimal, infinity or
    /// NaN; independent of the locale); 0 when there is none.
    double doubleValue() const;
    /// `doubleValue` narrowed to single precision.
    float floatValue() const;
    /// White space, sign, digits; clamped to the 32-bit range; 0 when there is no digit.
    int intValue() const;
    /// After white space, a sign and zeros: true for Y, y, T, t and 1 to 9.
    bool boolValue() const;

    size_t hash() const { return _data->hash; }
    friend bool operator==(const NSString& a, const NSString& b) {
        return a._data == b._data || (a._data->hash == b._data->hash && a._data->text == b._data->text);
    }

private:
    struct Data {
        std::u16string text;
        size_t hash;
    };
    explicit NSString(std::u16string text, int);
    std::shared_ptr<const Data> _data;
};

/// UTF-8 to UTF-16 and back with U+FFFD for what is malformed.
std::u16string utf16FromUTF8(std::string_view utf8);
std::string utf8FromUTF16(std::u16string_view units);

} // namespace veyra

template <>
struct std::hash<veyra::NSString> {
    size_t operator()(const veyra::NSString& string) const noexcept { return string.hash(); }
};
