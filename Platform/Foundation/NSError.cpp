#include "Platform/Foundation/NSError.h"

#include <algorithm>

namespace veyra {

Class NSError::classObject() {
    static const Class cls = new ClassObject("NSError", NSObject::classObject(), {});
    return cls;
}

NSError::NSError(NSString domain, int code, NSDictionary::Map userInfo)
    : _domain(std::move(domain)), _code(code), _userInfo(std::move(userInfo)) {}

NSString NSError::description() const {
    std::u16string text = u"Error Domain=";
    text += _domain.units();
    text += u" Code=";
    text += id(_code).description().units();
    if (_userInfo.empty())
        return NSString(std::u16string_view(text));

    std::vector<const NSDictionary::Map::value_type*> entries;
    for (const auto& entry : _userInfo)
        entries.push_back(&entry);
    std::ranges::sort(entries, {}, [](const auto* entry) { return entry->first.units(); });
    const char16_t* separator = u" UserInfo={";
    for (const auto* entry : entries) {
        text += separator;
        text += entry->first.units();
        text += u"=";
        text += entry->second.description().units();
        separator = u", ";
    }
    text += u"}";
    return NSString(std::u16string_view(text));
}

} // namespace veyra
