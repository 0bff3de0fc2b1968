#include "Platform/Foundation/NSURL.h"

#include <glib.h>

#include <algorithm>

namespace veyra {

namespace {

bool isLegalUnit(char16_t unit) {
    constexpr std::u16string_view marks = u"-._~:/?#[]@!$&'()*+,;=%";
    return unit < 0x80 && (g_ascii_isalnum(static_cast<char>(unit)) || marks.find(unit) != std::u16string_view::npos);
}

bool isHexDigit(char16_t unit) {
    return unit < 0x80 && g_ascii_isxdigit(static_cast<char>(unit));
}

bool hasLegalCharacters(std::u16string_view text) {
    if (!std::all_of(text.begin(), text.end(), isLegalUnit))
        return false;
    for (size_t at = text.find(u'%'); at != text.npos; at = text.find(u'%', at + 1))
        if (at + 2 >= text.size() || !isHexDigit(text[at + 1]) || !isHexDigit(text[at + 2]))
            return false;
    return std::count(text.begin(), text.end(), u'#') <= 1;
}

} // namespace

Class NSURL::classObject() {
    static Class cls = new ClassObject("NSURL", NSObject::classObject(), {});
    return cls;
}

std::shared_ptr<NSURL> NSURL::URLWithString(const id& string) {
    if (!string.isString() || !hasLegalCharacters(string.string()->units()))
        return nullptr;
    char* scheme = nullptr;
    if (!g_uri_split(string.string()->utf8().c_str(), G_URI_FLAGS_ENCODED, &scheme, nullptr, nullptr, nullptr, nullptr,
                     nullptr, nullptr, nullptr))
        return nullptr;
    std::string lowered = scheme ? scheme : "";
    g_free(scheme);
    std::transform(lowered.begin(), lowered.end(), lowered.begin(), g_ascii_tolower);
    return std::shared_ptr<NSURL>(new NSURL(*string.string(), std::move(lowered)));
}

bool NSURL::isEqual(const NSObject& other) const {
    const auto* url = dynamic_cast<const NSURL*>(&other);
    return url && url->_string == _string;
}

} // namespace veyra
