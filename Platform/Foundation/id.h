// The value that the plug-in can hold without looking inside: nothing, undefined, a boolean, a number, a string, an
// array or an object. A value of two words; copies share arrays and objects. Any thread may hold one; a script object
// inside is released on any thread and gives its script value back on the web thread by itself.
#pragma once

#include "Platform/Foundation/NSString.h"
#include "Platform/Foundation/SharedBox.h"

#include <concepts>
#include <cstdint>
#include <memory>
#include <variant>
#include <vector>

namespace veyra {

class NSObject;

/// What the script engine's undefined arrives as.
struct WebUndefined {
    friend bool operator==(WebUndefined, WebUndefined) { return true; }
};

class id {
public:
    using Array = std::vector<id>;

    id() = default;
    id(std::nullptr_t) {}
    id(WebUndefined) : _value(WebUndefined{}) {}
    /// Only a boolean itself: what merely converts to one, a pointer above all, is no value.
    id(std::same_as<bool> auto value) : _value(value) {}
    id(double value) : _value(value) {}
    id(int value) : _value(static_cast<double>(value)) {}
    id(unsigned value) : _value(static_cast<double>(value)) {}
    id(int64_t value) : _value(static_cast<double>(value)) {}
    id(uint64_t value) : _value(static_cast<double>(value)) {}
    id(NSString value) : _value(std::move(value)) {}
    id(const char* utf8) : _value(NSString(utf8)) {}
    id(Array elements) : _value(SharedBox<Array>(std::move(elements))) {}
    /// An empty pointer is nil.
    template <class T>
    requires std::is_convertible_v<T*, NSObject*> id(std::shared_ptr<T> object) {
        if (object)
            _value = SharedBox<std::shared_ptr<NSObject>>(std::move(object));
    }

    bool isNil() const { return std::holds_alternative<std::monostate>(_value); }
    bool isUndefined() const { return std::holds_alternative<WebUndefined>(_value); }
    bool isBoolean() const { return std::holds_alternative<bool>(_value); }
    /// True for numbers and booleans: both are number objects.
    bool isNumber() const { return std::holds_alternative<double>(_value) || isBoolean(); }
    bool isString() const { return std::holds_alternative<NSString>(_value); }
    bool isArray() const { return std::holds_alternative<SharedBox<Array>>(_value); }
    bool isObject() const { return std::holds_alternative<SharedBox<std::shared_ptr<NSObject>>>(_value); }
    explicit operator bool() const { return !isNil(); }

    /// The string, array or object inside, or null when the value is of another kind.
    const NSString* string() const { return std::get_if<NSString>(&_value); }
    const Array* array() const;
    const std::shared_ptr<NSObject>& object() const;
    /// The object inside as a T, or null.
    template <class T>
    std::shared_ptr<T> as() const {
        return std::dynamic_pointer_cast<T>(object());
    }

    // Conversions. Numbers, booleans and strings convert; nil gives 0 and false. Anything else throws NSException
    // (NSInvalidArgumentException, "unrecognized selector").
    double doubleValue() const;
    float floatValue() const;
    /// Numbers truncate and clamp to the 32-bit range (NaN gives 0).
    int intValue() const;
    bool boolValue() const;
    /// Numbers truncate, negatives wrap, NaN gives 0, what 64 bits cannot hold is clamped; strings have no such
    /// conversion and throw.
    uint64_t unsignedIntegerValue() const;
    /// True when this is a string of that text. Numbers, booleans and nil are not equal; anything else cannot be
    /// compared with a string and throws.
    bool isEqualToString(const NSString& other) const;
    /// A part of a string, as NSString has it; nil for nil. Anything else has no such message and throws.
    id substringWithRange(size_t location, size_t length) const;

    /// The value of a key: an object answers by its own rules, nil gives nil, other kinds throw NSException
    /// (NSUndefinedKeyException).
    id valueForKey(const NSString& key) const;

    /// Equality: strings by text, numbers and booleans by value, arrays element by element, objects by `isEqual`; nil
    /// equals nil and undefined undefined. NaN equals NaN here, so that a registry finds again what it was given as a
    /// key.
    bool isEqual(const id& other) const;
    size_t hash() const;
    /// The platform's text form: "(null)" for nil, "undefined", integers plain, other numbers `%0.16g` in the C locale,
    /// booleans 1 and 0, arrays in parentheses with an element a line.
    NSString description() const;

    friend bool operator==(const id& a, const id& b) { return a.isEqual(b); }

private:
    std::variant<std::monostate, WebUndefined, bool, double, NSString, SharedBox<Array>,
                 SharedBox<std::shared_ptr<NSObject>>>
        _value;
};

using NSArray = id::Array;

} // namespace veyra

template <>
struct std::hash<veyra::id> {
    size_t operator()(const veyra::id& value) const noexcept { return value.hash(); }
};
