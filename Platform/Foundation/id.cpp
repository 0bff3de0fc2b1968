#include "Platform/Foundation/id.h"

#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/Reasons.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace veyra {
namespace {

/// The number inside a number or boolean.
template <class Value>
std::optional<double> numberIn(const Value& value) {
    if (const double* number = std::get_if<double>(&value))
        return *number;
    if (const bool* flag = std::get_if<bool>(&value))
        return *flag ? 1 : 0;
    return std::nullopt;
}

const std::string& className(const id& value) {
    static const auto& names = *new std::array<std::string, 4>{"WebUndefined", "NSNumber", "NSString", "NSArray"};
    if (value.isUndefined())
        return names[0];
    if (value.isNumber())
        return names[1];
    if (value.isString())
        return names[2];
    return value.isArray() ? names[3] : value.object()->isa()->name();
}

int clampedInt(double number) {
    if (std::isnan(number))
        return 0;
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<double>(number, Limits::min(), Limits::max()));
}

uint64_t wrappedUnsigned(double number) {
    constexpr double twoTo63 = 0x1p63;
    if (std::isnan(number))
        return 0;
    if (number < 0)
        return static_cast<uint64_t>(static_cast<int64_t>(std::max(number, -twoTo63)));
    return number >= 2 * twoTo63 ? std::numeric_limits<uint64_t>::max() : static_cast<uint64_t>(number);
}

bool areEqual(const id::Array& a, const id::Array& b) {
    return &a == &b || std::ranges::equal(a, b, [](const id& x, const id& y) { return x.isEqual(y); });
}

size_t hashOfNumber(double number) {
    if (std::isnan(number))
        return std::hash<double>()(std::numeric_limits<double>::quiet_NaN());
    return std::hash<double>()(number); // the same for both zeros
}

} // namespace

const id::Array* id::array() const {
    const auto* const array = std::get_if<SharedBox<Array>>(&_value);
    return array ? array->get() : nullptr;
}

const std::shared_ptr<NSObject>& id::object() const {
    static const auto& none = *new std::shared_ptr<NSObject>();
    const auto* const box = std::get_if<SharedBox<std::shared_ptr<NSObject>>>(&_value);
    const auto* const object = box ? box->get() : nullptr;
    return object ? *object : none;
}

double id::doubleValue() const {
    if (const auto number = numberIn(_value))
        return *number;
    if (const NSString* text = string())
        return text->doubleValue();
    if (isNil())
        return 0;
    raiseUnrecognizedSelector(className(*this), "doubleValue");
}

float id::floatValue() const {
    if (const auto number = numberIn(_value))
        return static_cast<float>(*number);
    if (const NSString* text = string())
        return text->floatValue();
    if (isNil())
        return 0;
    raiseUnrecognizedSelector(className(*this), "floatValue");
}

int id::intValue() const {
    if (const auto number = numberIn(_value))
        return clampedInt(*number);
    if (const NSString* text = string())
        return text->intValue();
    if (isNil())
        return 0;
    raiseUnrecognizedSelector(className(*this), "intValue");
}

bool id::boolValue() const {
    if (const auto number = numberIn(_value))
        return *number != 0;
    if (const NSString* text = string())
        return text->boolValue();
    if (isNil())
        return false;
    raiseUnrecognizedSelector(className(*this), "boolValue");
}

uint64_t id::unsignedIntegerValue() const {
    if (const auto number = numberIn(_value))
        return wrappedUnsigned(*number);
    if (isNil())
        return 0;
    raiseUnrecognizedSelector(className(*this), "unsignedIntegerValue");
}

bool id::isEqualToString(const NSString& other) const {
    if (const NSString* text = string())
        return *text == other;
    if (isNil() || isNumber())
        return false;
    raiseUnrecognizedSelector(className(*this), "isEqualToString:");
}

id id::substringWithRange(size_t location, size_t length) const {
    if (const NSString* text = string())
        return id(text->substringWithRange(location, length));
    if (isNil())
        return id();
    raiseUnrecognizedSelector(className(*this), "substringWithRange:");
}

id id::valueForKey(const NSString& key) const {
    if (const auto receiver = object())
        return receiver->valueForKey(key);
    if (isNil())
        return id();
    raiseUndefinedKey(className(*this), "valueForUndefinedKey:", key);
}

bool id::isEqual(const id& other) const {
    if (const auto number = numberIn(_value)) {
        const auto otherNumber = numberIn(other._value);
        return otherNumber && (*number == *otherNumber || (std::isnan(*number) && std::isnan(*otherNumber)));
    }
    if (_value.index() != other._value.index())
        return false;
    if (const NSString* text = string())
        return *text == *other.string();
    if (const Array* elements = array())
        return areEqual(*elements, *other.array());
    if (const auto& mine = object())
        return mine == other.object() || mine->isEqual(*other.object());
    return true; // both nil, or both undefined
}

size_t id::hash() const {
    if (const auto number = numberIn(_value))
        return hashOfNumber(*number);
    if (const NSString* text = string())
        return text->hash();
    if (const auto& mine = object())
        return mine->hash();
    if (const Array* elements = array()) {
        size_t result = elements->size();
        for (const id& element : *elements)
            result = result * 31 + element.hash();
        return result;
    }
    return _value.index();
}

} // namespace veyra
