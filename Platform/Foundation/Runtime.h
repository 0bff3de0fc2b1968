// Classes, selectors and methods at run time: what look-up by name, method replacement and the exposure to scripts
// need. Any thread may ask; replacing a method is seen by all threads at once. Classes and selectors live for ever.
#pragma once

#include "Platform/Foundation/id.h"

#include <atomic>
#include <optional>
#include <shared_mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace veyra {

/// The name of a method ("setRegion:animated:"), interned: equal names are the same selector.
class SEL {
public:
    SEL(const char* name); // NOLINT(google-explicit-constructor)
    /// The selector of that name if there is one already. Names that a page makes up are looked up, never interned.
    static std::optional<SEL> find(std::string_view name);
    const std::string& name() const { return *_name; }
    friend bool operator==(SEL a, SEL b) { return a._name == b._name; }
    size_t hash() const { return std::hash<const void*>()(_name); }

private:
    explicit SEL(const std::string* name) : _name(name) {}
    const std::string* _name;
};

/// A method's body. `arguments` has as many values as the selector has colons.
using IMP = id (*)(NSObject& self, std::span<const id> arguments);

struct Method {
    SEL selector;
    /// Result, self, selector, then the arguments: v nothing, @ object, c boolean, d double, Q unsigned integer.
    std::string types;
    IMP implementation;
};

class ClassObject;

/// A method that takes an object with numbers and gives a new value object: its arithmetic alone, which calls with
/// nothing but numbers come down to. What the method does with any other argument is its own affair.
struct WebNumericMethod {
    SEL selector;
    /// Classes of value objects. The method looks for the attributes of the first in their order when its argument is
    /// none of them.
    ClassObject* argument;
    ClassObject* result;
    /// The same attributes in the order in which the method reads their values.
    std::vector<NSString> reads;
    /// From the attributes of an argument to those of the result, each in its class's order. Runs no script.
    void (*compute)(const NSObject& self, const double* values, double* fields);
};

/// What a class lets scripts see. A class that has none of these functions shows nothing.
struct WebScripting {
    /// The script name of a key; nothing: the key keeps its own name.
    std::optional<NSString> (*webScriptNameForKey)(const char* key) = nullptr;
    bool (*isKeyExcludedFromWebScript)(const char* key) = nullptr;
    std::optional<NSString> (*webScriptNameForSelector)(SEL selector) = nullptr;
    bool (*isSelectorExcludedFromWebScript)(SEL selector) = nullptr;
    /// For classes of value objects, whose attributes are numbers: a new object of the class.
    std::shared_ptr<NSObject> (*makeValueObject)() = nullptr;
    /// Those of the class's methods that are numeric; made once.
    const std::vector<WebNumericMethod>& (*numericMethods)() = nullptr;
};

class ClassObject {
public:
    /// Registers the class under its name. Objects of this type are made once, as function-local statics that are never
    /// destroyed (see VEYRA_CLASS in NSObject.h).
    ClassObject(const char* name, ClassObject* superclass, std::vector<Method> methods, WebScripting scripting = {});

    const std::string& name() const { return _name; }
    ClassObject* superclass() const { return _superclass; }
    const WebScripting& scripting() const { return _scripting; }
    bool isSubclassOf(const ClassObject* other) const;

    /// The method found in this class or the nearest ancestor.
    std::optional<Method> method(SEL selector) const;
    /// The body of that method, or null; allocates nothing.
    IMP implementation(SEL selector) const;
    /// The methods that this class itself defines, in the order given.
    std::vector<Method> methods() const;
    /// Replaces or adds; returns the former body of this class, or null.
    IMP replaceMethod(SEL selector, IMP body, const char* types);
    /// Counts the replacements in all classes: what was looked up holds as long as this stays.
    static unsigned replacementCount() { return replacements.load(std::memory_order_acquire); }

private:
    /// Applies `found` to the method, under the lock of the class that defines it; false when no class does.
    template <class F>
    bool findMethod(SEL selector, F found) const;

    const std::string _name;
    ClassObject* const _superclass;
    const WebScripting _scripting;
    mutable std::shared_mutex _mutex;
    std::vector<Method> _methods; // guarded by _mutex
    static inline std::atomic<unsigned> replacements{0};
};

using Class = ClassObject*;

/// The class registered under the name, or null.
Class NSClassFromString(const NSString& name);
/// Replaces the instance method of the class (or adds it); returns the former body, or null when there was none. Does
/// nothing for a null class.
IMP class_replaceMethod(Class cls, SEL selector, IMP implementation, const char* types);

} // namespace veyra

template <>
struct std::hash<veyra::SEL> {
    size_t operator()(veyra::SEL selector) const noexcept { return selector.hash(); }
};
