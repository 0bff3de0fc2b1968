// UTF-8 to UTF-16 and back.
#include "Platform/Foundation/NSString.h"

namespace veyra {
namespace {

constexpr char32_t replacement = 0xfffd;

struct Decoded {
    char32_t character;
    size_t length;
};

/// What a first byte allows: how many bytes follow and the range of the second, which shuts out overlong forms,
/// surrogates and what lies beyond U+10FFFF.
struct Lead {
    size_t following;
    unsigned char low;
    unsigned char high;
};

Lead leadOf(unsigned char byte) {
    if (byte >= 0xc2 && byte <= 0xdf)
        return {1, 0x80, 0xbf};
    if (byte >= 0xe0 && byte <= 0xef)
        return {2, static_cast<unsigned char>(byte == 0xe0 ? 0xa0 : 0x80),
                static_cast<unsigned char>(byte == 0xed ? 0x9f : 0xbf)};
    if (byte >= 0xf0 && byte <= 0xf4)
        return {3, static_cast<unsigned char>(byte == 0xf0 ? 0x90 : 0x80),
                static_cast<unsigned char>(byte == 0xf4 ? 0x8f : 0xbf)};
    return {0, 0, 0};
}

/// The character at the front of a text that begins with no ASCII; a malformed sequence is taken as far as it could
/// have begun a character.
Decoded decode(std::string_view utf8) {
    const auto first = static_cast<unsigned char>(utf8[0]);
    const Lead lead = leadOf(first);
    if (lead.following == 0)
        return {replacement, 1};
    char32_t character = first & (0x3fU >> lead.following);
    unsigned char low = lead.low;
    unsigned char high = lead.high;
    for (size_t i = 1; i <= lead.following; ++i) {
        const auto byte = i < utf8.size() ? static_cast<unsigned char>(utf8[i]) : 0;
        if (byte < low || byte > high)
            return {replacement, i};
        character = character << 6 | (byte & 0x3fU);
        low = 0x80;
        high = 0xbf;
    }
    return {character, lead.following + 1};
}

constexpr bool isHighSurrogate(char16_t unit) {
    return (unit & 0xfc00) == 0xd800;
}
constexpr bool isLowSurrogate(char16_t unit) {
    return (unit & 0xfc00) == 0xdc00;
}

void appendUTF8(std::string& utf8, char32_t character) {
    const auto tail = [&](unsigned shift) { utf8 += static_cast<char>(0x80 | (character >> shift & 0x3f)); };
    if (character < 0x80) {
        utf8 += static_cast<char>(character);
    } else if (character < 0x800) {
        utf8 += static_cast<char>(0xc0 | character >> 6);
        tail(0);
    } else if (character < 0x10000) {
        utf8 += static_cast<char>(0xe0 | character >> 12);
        tail(6);
        tail(0);
    } else {
        utf8 += static_cast<char>(0xf0 | character >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

} // namespace

std::u16string utf16FromUTF8(std::string_view utf8) {
    std::u16string units;
    units.reserve(utf8.size());
    for (size_t place = 0; place < utf8.size();) {
        if (static_cast<unsigned char>(utf8[place]) < 0x80) {
            units += static_cast<char16_t>(utf8[place++]);
            continue;
        }
        const auto [character, length] = decode(utf8.substr(place));
        if (character >= 0x10000) {
            units += static_cast<char16_t>(0xd7c0 + (character >> 10));
            units += static_cast<char16_t>(0xdc00 | (character & 0x3ff));
        } else {
            units += static_cast<char16_t>(character);
        }
        place += length;
    }
    return units;
}

std::string utf8FromUTF16(std::u16string_view units) {
    std::string utf8;
    utf8.reserve(units.size());
    for (size_t place = 0; place < units.size(); ++place) {
        char32_t character = units[place];
        if (isHighSurrogate(units[place]) && place + 1 < units.size() && isLowSurrogate(units[place + 1]))
            character = ((character & 0x3ff) << 10) + (units[++place] & 0x3ffU) + 0x10000;
        else if (isHighSurrogate(units[place]) || isLowSurrogate(units[place]))
            character = replacement;
        appendUTF8(utf8, character);
    }
    return utf8;
}

} // namespace veyra
