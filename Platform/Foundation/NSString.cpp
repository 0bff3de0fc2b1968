#include "Platform/Foundation/NSString.h"

#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/NSException.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <new>

namespace veyra {
namespace {

/// The place after white space and one sign. `negative` tells which sign it was.
size_t skipSign(std::u16string_view units, bool& negative) {
    const size_t place = skipWhiteSpace(units, 0);
    const bool signed_ = place < units.size() && (units[place] == u'-' || units[place] == u'+');
    negative = signed_ && units[place] == u'-';
    return signed_ ? place + 1 : place;
}

} // namespace

const NSString::Data* NSString::makeData(std::u16string_view units) {
    if (units.size() > std::numeric_limits<uint32_t>::max())
        throw std::bad_alloc();
    void* const memory = ::operator new(sizeof(Data) + units.size() * sizeof(char16_t));
    Data* const data =
        new (memory) Data{1, static_cast<uint32_t>(units.size()), std::hash<std::u16string_view>()(units)};
    std::uninitialized_copy(units.begin(), units.end(), reinterpret_cast<char16_t*>(data + 1));
    return data;
}

void NSString::release(const Data* data) noexcept {
    if (data->references.fetch_sub(1, std::memory_order_acq_rel) > 1)
        return;
    data->~Data();
    ::operator delete(const_cast<Data*>(data));
}

NSString::NSString() {
    static const auto& empty = *new NSString(std::u16string_view());
    _data = empty._data;
    _data->references.fetch_add(1, std::memory_order_relaxed);
}

NSString::NSString(const char* utf8) : NSString(std::string_view(utf8)) {}

NSString::NSString(std::string_view utf8) : _data(makeData(utf16FromUTF8(utf8))) {}

NSString::NSString(std::u16string_view units) : _data(makeData(units)) {}

std::string NSString::utf8() const {
    return utf8FromUTF16(units());
}

NSString NSString::substringWithRange(size_t location, size_t length) const {
    const size_t size = this->length();
    if (location > size || length > size - location) {
        const std::string reason = "-[NSString substringWithRange:]: Range {" + std::to_string(location) + ", " +
                                   std::to_string(length) + "} out of bounds; string length " + std::to_string(size);
        throw NSException(NSRangeException, NSString(std::string_view(reason)));
    }
    return NSString(units().substr(location, length));
}

NSString NSString::stringByReplacingUnit(char16_t from, char16_t to) const {
    std::u16string text(units());
    std::ranges::replace(text, from, to);
    return NSString(std::u16string_view(text));
}

float NSString::floatValue() const {
    return static_cast<float>(doubleValue());
}

int NSString::intValue() const {
    const std::u16string_view units = this->units();
    bool negative = false;
    const int64_t largest = std::numeric_limits<int>::max();
    int64_t number = 0;
    for (size_t place = skipSign(units, negative); place < units.size() && isDigit(units[place]); ++place)
        number = std::min(largest + 1, number * 10 + (units[place] - u'0'));
    return static_cast<int>(negative ? -number : std::min(number, largest));
}

bool NSString::boolValue() const {
    const std::u16string_view units = this->units();
    bool negative = false;
    size_t place = skipSign(units, negative);
    while (place < units.size() && units[place] == u'0')
        ++place;
    if (place == units.size())
        return false;
    return isDigit(units[place]) || std::u16string_view(u"YyTt").find(units[place]) != std::u16string_view::npos;
}

} // namespace veyra
