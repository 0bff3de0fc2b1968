// An immutable string of UTF-16 code units. Copies share the text; the hash is computed once. What the script engine
// hands over comes back unit for unit, lone surrogates included. Any thread may use any copy.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace veyra {

class NSString {
public:
    /// The empty string.
    NSString();
    /// From UTF-8; malformed sequences become U+FFFD.
    NSString(const char* utf8); // NOLINT(google-explicit-constructor): literals name keys, events and selectors
    explicit NSString(std::string_view utf8);
    explicit NSString(std::u16string_view units);
    NSString(const NSString& other) noexcept : _data(other._data) {
        _data->references.fetch_add(1, std::memory_order_relaxed);
    }
    /// What is moved from keeps its text.
    NSString& operator=(const NSString& other) noexcept {
        NSString copy(other);
        std::swap(_data, copy._data);
        return *this;
    }
    ~NSString() { release(_data); }

    /// Number of UTF-16 code units.
    size_t length() const { return _data->length; }
    bool isEmpty() const { return _data->length == 0; }
    std::u16string_view units() const { return {_data->units(), _data->length}; }

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
        return a._data == b._data || (a._data->hash == b._data->hash && a.units() == b.units());
    }

private:
    /// One block of memory: this, and the units behind it. There may be hundreds of thousands of them.
    struct Data {
        mutable std::atomic<uint32_t> references;
        const uint32_t length;
        const size_t hash;
        const char16_t* units() const { return reinterpret_cast<const char16_t*>(this + 1); }
    };
    static const Data* makeData(std::u16string_view units);
    static void release(const Data* data) noexcept;

    const Data* _data; // never null
};

/// UTF-8 to UTF-16 and back with U+FFFD for what is malformed.
std::u16string utf16FromUTF8(std::string_view utf8);
std::string utf8FromUTF16(std::u16string_view units);

} // namespace veyra

template <>
struct std::hash<veyra::NSString> {
    size_t operator()(const veyra::NSString& string) const noexcept { return string.hash(); }
};
