#include "Platform/Foundation/NSDictionary.h"

namespace veyra {

Class NSDictionary::classObject() {
    static const Class cls = new ClassObject("NSDictionary", NSObject::classObject(), {});
    return cls;
}

id NSDictionary::objectForKey(const NSString& key) const {
    const auto entry = _entries.find(key);
    return entry == _entries.end() ? id() : entry->second;
}

} // namespace veyra
