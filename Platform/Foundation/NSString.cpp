#include "Platform/Foundation/NSString.h"

#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/NSException.h"

#include <algorithm>
#include <limits>

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

NSString::NSString() {
    static const auto& empty = *new std::shared_ptr<const Data>(
        std::make_shared<const Data>(Data{std::u16string(), std::hash<std::u16string_view>()({})}));
    _data = empty;
}

NSString::NSString(const char* utf8) : NSString(utf16FromUTF8(utf8), 0) {}

NSString::NSString(std::string_view utf8) : NSString(utf16FromUTF8(utf8), 0) {}

NSString::NSString(std::u16string_view units) : NSString(std::u16string(units), 0) {}

NSString::NSString(std::u16string text, int) {
    const size_t hash = std::hash<std::u16string_view>()(text);
    _data = std::make_shared<const Data>(Data{std::move(text), hash});
}

std::string NSString::utf8() const {
    return utf8FromUTF16(_data->text);
}

NSString NSString::substringWithRange(size_t location, size_t length) const {
    const size_t size = _data->text.size();
    if (location > size || length > size - location) {
        const std::string reason = "-[NSString substringWithRange:]: Range {" + std::to_string(location) + ", " +
                                   std::to_string(length) + "} out of bounds; string length " + std::to_string(size);
        throw NSException(NSRangeException, NSString(std::string_view(reason)));
    }
    return NSString(_data->text.substr(location, length), 0);
}

NSString NSString::stringByReplacingUnit(char16_t from, char16_t to) const {
    std::u16string text = _data->text;
    std::ranges::replace(text, from, to);
    return NSString(std::move(text), 0);
}

float NSString::floatValue() const {
    return static_cast<float>(doubleValue());
}

int NSString::intValue() const {
    const std::u16string_view units = _data->text;
    bool negative = false;
    const int64_t largest = std::numeric_limits<int>::max();
    int64_t number = 0;
    for (size_t place = skipSign(units, negative); place < units.size() && isDigit(units[place]); ++place)
        number = std::min(largest + 1, number * 10 + (units[place] - u'0'));
    return static_cast<int>(negative ? -number : std::min(number, largest));
}

bool NSString::boolValue() const {
    const std::u16string_view units = _data->text;
    bool negative = false;
    size_t place = skipSign(units, negative);
    while (place < units.size() && units[place] == u'0')
        ++place;
    if (place == units.size())
        return false;
    return isDigit(units[place]) || std::u16string_view(u"YyTt").find(units[place]) != std::u16string_view::npos;
}

} // namespace veyra
