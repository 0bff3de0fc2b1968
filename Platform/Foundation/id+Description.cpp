// The text form of values.
#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/NumberText.h"

#include <algorithm>

namespace veyra {
namespace {

constexpr size_t indentStep = 4;

constexpr bool isAlphanumeric(char16_t unit) {
    return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

/// "\Uxxxx", with lower-case digits.
void appendEscaped(std::u16string& text, char16_t unit) {
    text += u"\\U";
    for (int shift = 12; shift >= 0; shift -= 4)
        text += u"0123456789abcdef"[unit >> shift & 0xf];
}

void appendQuoted(std::u16string& text, std::u16string_view units) {
    text += u'"';
    for (const char16_t unit : units) {
        if (unit == u'"' || unit == u'\\') {
            text += u'\\';
            text += unit;
        } else if (unit == u'\n') {
            text += u"\\n";
        } else if (unit < u' ' || unit > u'~') {
            appendEscaped(text, unit);
        } else {
            text += unit;
        }
    }
    text += u'"';
}

void appendArray(std::u16string& text, const id::Array& elements, size_t indent) {
    text += u"(\n";
    for (size_t i = 0; i < elements.size(); ++i) {
        text.append(indent + indentStep, u' ');
        if (const id::Array* nested = elements[i].array()) {
            appendArray(text, *nested, indent + indentStep);
        } else {
            const NSString element = elements[i].description();
            if (!element.isEmpty() && std::ranges::all_of(element.units(), isAlphanumeric))
                text += element.units();
            else
                appendQuoted(text, element.units());
        }
        text += i + 1 < elements.size() ? u",\n" : u"\n";
    }
    text.append(indent, u' ');
    text += u')';
}

} // namespace

NSString id::description() const {
    if (const double* number = std::get_if<double>(&_value))
        return NSString(std::string_view(generalText(*number)));
    if (const bool* flag = std::get_if<bool>(&_value))
        return *flag ? "1" : "0";
    if (const NSString* text = string())
        return *text;
    if (const Array* elements = array()) {
        std::u16string text;
        appendArray(text, *elements, 0);
        return NSString(std::u16string_view(text));
    }
    if (const auto receiver = object())
        return receiver->description();
    return isUndefined() ? "undefined" : "(null)";
}

} // namespace veyra
