#include "Platform/Foundation/NSObject.h"

#include "Platform/Foundation/Reasons.h"

#include <algorithm>

namespace veyra {
namespace {

id raiseForUndefinedKey(NSObject& self, std::span<const id> arguments) {
    raiseUndefinedKey(self.isa()->name(), "valueForUndefinedKey:", arguments[0].description());
}

size_t argumentCount(SEL selector) {
    return static_cast<size_t>(std::ranges::count(selector.name(), ':'));
}

/// "latitudeDelta" -> "setLatitudeDelta:".
std::string setterName(const NSString& key) {
    std::string name = "set" + key.utf8() + ":";
    if (name[3] >= 'a' && name[3] <= 'z')
        name[3] = static_cast<char>(name[3] - 'a' + 'A');
    return name;
}

} // namespace

Class NSObject::classObject() {
    static const Class cls =
        new ClassObject("NSObject", nullptr, {Method{"valueForUndefinedKey:", "@@:@", raiseForUndefinedKey}});
    return cls;
}

id NSObject::valueForKey(const NSString& key) {
    const Class cls = isa(); // first: making the class makes its selectors
    if (const auto selector = SEL::find(key.utf8()); selector && argumentCount(*selector) == 0)
        if (const auto getter = cls->method(*selector); getter && !getter->types.starts_with('v'))
            return getter->implementation(*this, {});
    return valueForUndefinedKey(key);
}

void NSObject::setValueForKey(const id& value, const NSString& key) {
    const Class cls = isa(); // first, as above
    const auto selector = SEL::find(setterName(key));
    const IMP setter = selector && argumentCount(*selector) == 1 ? cls->implementation(*selector) : nullptr;
    if (!setter)
        raiseUndefinedKey(cls->name(), "setValue:forUndefinedKey:", key);
    setter(*this, {&value, 1});
}

id NSObject::valueForUndefinedKey(const NSString& key) {
    static const SEL selector("valueForUndefinedKey:");
    struct Found {
        Class cls = nullptr;
        unsigned replacementCount = 0;
        IMP implementation = nullptr;
    };
    static thread_local Found found; // absent keys of script objects come by the ten thousand
    const Class cls = isa();
    if (const unsigned count = ClassObject::replacementCount(); found.cls != cls || found.replacementCount != count)
        found = {cls, count, cls->implementation(selector)};
    const id argument(key);
    return found.implementation(*this, {&argument, 1});
}

id NSObject::performSelector(SEL selector, std::span<const id> arguments) {
    const IMP implementation = isa()->implementation(selector);
    if (!implementation || argumentCount(selector) != arguments.size())
        raiseUnrecognizedSelector(isa()->name(), selector.name());
    return implementation(*this, arguments);
}

NSString NSObject::description() const {
    return NSString(std::string_view(isa()->name()));
}

} // namespace veyra
