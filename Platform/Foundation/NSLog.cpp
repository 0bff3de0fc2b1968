#include "Platform/Foundation/NSLog.h"

#include "Platform/Foundation/NumberText.h"

#include <glib.h>

#include <array>

namespace veyra {
namespace {

constexpr size_t longestMessage = 64 * 1024;

/// Cuts the text to the length, at the beginning of a character.
void truncate(std::string& utf8, size_t length) {
    if (utf8.size() <= length)
        return;
    while ((static_cast<unsigned char>(utf8[length]) & 0xc0) == 0x80)
        --length;
    utf8.resize(length);
}

} // namespace

FormatArgument::FormatArgument(double value) : FormatArgument(id(value), nullptr) {}

FormatArgument::FormatArgument(const id& value, std::nullptr_t)
    : _text(value.description()), _number(value.isNumber() ? value.doubleValue() : 0) {}

NSString NSStringWithFormat(const char* format, std::initializer_list<FormatArgument> arguments) {
    const std::u16string units = utf16FromUTF8(format);
    const FormatArgument* argument = arguments.begin();
    std::u16string text;
    for (size_t i = 0; i < units.size(); ++i) {
        const char16_t kind = units[i] == u'%' && i + 1 < units.size() ? units[i + 1] : u'\0';
        if (kind != u'@' && kind != u's' && kind != u'f' && kind != u'%') {
            text += units[i];
            continue;
        }
        ++i;
        if (kind == u'%')
            text += u'%';
        else if (argument == arguments.end())
            text += u"(null)";
        else if (kind == u'f')
            text += utf16FromUTF8(fixedText((argument++)->number()));
        else
            text += (argument++)->text().units();
    }
    return NSString(std::u16string_view(text));
}

void NSLog(const char* format, std::initializer_list<FormatArgument> arguments) {
    std::string message = NSStringWithFormat(format, arguments).utf8();
    truncate(message, longestMessage);
    const std::array<GLogField, 3> fields{{
        {"PRIORITY", "5", -1},
        {"GLIB_DOMAIN", "veyra", -1},
        {"MESSAGE", message.data(), static_cast<gssize>(message.size())},
    }};
    g_log_structured_array(G_LOG_LEVEL_MESSAGE, fields.data(), fields.size());
}

} // namespace veyra
