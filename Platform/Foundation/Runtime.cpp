#include "Platform/Foundation/Runtime.h"

#include <algorithm>
#include <mutex>
#include <unordered_map>
#include <unordered_set>

namespace veyra {
namespace {

struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

/// Process-wide and never destroyed: threads may still ask while the process ends.
struct SelectorTable {
    std::shared_mutex mutex;
    std::unordered_set<std::string, TextHash, std::equal_to<>> names; // its nodes stay where they are
};

struct ClassTable {
    std::shared_mutex mutex;
    std::unordered_map<std::string, Class, TextHash, std::equal_to<>> classes;
};

SelectorTable& selectorTable() {
    static SelectorTable* const table = new SelectorTable;
    return *table;
}

ClassTable& classTable() {
    static ClassTable* const table = new ClassTable;
    return *table;
}

} // namespace

SEL::SEL(const char* name) {
    if (const auto known = find(name)) {
        _name = known->_name;
        return;
    }
    SelectorTable& table = selectorTable();
    const std::lock_guard guard(table.mutex);
    _name = &*table.names.emplace(name).first;
}

std::optional<SEL> SEL::find(std::string_view name) {
    SelectorTable& table = selectorTable();
    const std::shared_lock guard(table.mutex);
    const auto known = table.names.find(name);
    if (known == table.names.end())
        return std::nullopt;
    return SEL(&*known);
}

ClassObject::ClassObject(const char* name, ClassObject* superclass, std::vector<Method> methods, WebScripting scripting)
    : _name(name), _superclass(superclass), _scripting(scripting), _methods(std::move(methods)) {
    ClassTable& table = classTable();
    const std::lock_guard guard(table.mutex);
    table.classes.insert_or_assign(_name, this);
}

bool ClassObject::isSubclassOf(const ClassObject* other) const {
    for (const ClassObject* cls = this; cls; cls = cls->_superclass)
        if (cls == other)
            return true;
    return false;
}

template <class F>
bool ClassObject::findMethod(SEL selector, F found) const {
    for (const ClassObject* cls = this; cls; cls = cls->_superclass) {
        const std::shared_lock guard(cls->_mutex);
        const auto method = std::ranges::find(cls->_methods, selector, &Method::selector);
        if (method != cls->_methods.end()) {
            found(*method);
            return true;
        }
    }
    return false;
}

std::optional<Method> ClassObject::method(SEL selector) const {
    std::optional<Method> result;
    findMethod(selector, [&](const Method& method) { result = method; });
    return result;
}

IMP ClassObject::implementation(SEL selector) const {
    IMP result = nullptr;
    findMethod(selector, [&](const Method& method) { result = method.implementation; });
    return result;
}

std::vector<Method> ClassObject::methods() const {
    const std::shared_lock guard(_mutex);
    return _methods;
}

IMP ClassObject::replaceMethod(SEL selector, IMP body, const char* types) {
    const std::lock_guard guard(_mutex);
    replacements.fetch_add(1, std::memory_order_release); // seen by whoever waits for the lock
    const auto method = std::ranges::find(_methods, selector, &Method::selector);
    if (method == _methods.end()) {
        _methods.push_back(Method{selector, types, body});
        return nullptr;
    }
    const IMP former = method->implementation;
    *method = Method{selector, types, body};
    return former;
}

Class NSClassFromString(const NSString& name) {
    ClassTable& table = classTable();
    const std::string key = name.utf8();
    const std::shared_lock guard(table.mutex);
    const auto known = table.classes.find(key);
    return known == table.classes.end() ? nullptr : known->second;
}

IMP class_replaceMethod(Class cls, SEL selector, IMP implementation, const char* types) {
    return cls ? cls->replaceMethod(selector, implementation, types) : nullptr;
}

} // namespace veyra
