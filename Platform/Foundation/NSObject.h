// The root of the platform's and the plug-in's classes: class, key-value access, equality and text form. Owned by
// std::shared_ptr. Threads: as the subclass says.
#pragma once

#include "Platform/Foundation/Runtime.h"

namespace veyra {

class NSObject {
public:
    NSObject() = default;
    NSObject(const NSObject&) = delete;
    NSObject& operator=(const NSObject&) = delete;
    virtual ~NSObject() = default;

    static Class classObject();
    virtual Class isa() const { return classObject(); }
    bool isKindOfClass(Class cls) const { return isa()->isSubclassOf(cls); }

    /// The keys of the attributes that scripts see on the object, in order.
    virtual std::vector<NSString> attributeKeys() const { return {}; }

    /// Key-value access: calls the getter method of the key's name; a key without one goes to `valueForUndefinedKey:`.
    virtual id valueForKey(const NSString& key);
    /// Calls the setter method "setKey:"; throws NSException (NSUndefinedKeyException) when there is none.
    virtual void setValueForKey(const id& value, const NSString& key);
    /// Calls the class's method `valueForUndefinedKey:`, which by default throws NSException (NSUndefinedKeyException).
    id valueForUndefinedKey(const NSString& key);

    /// Calls the method of that selector; throws NSException (NSInvalidArgumentException, "unrecognized selector") when
    /// the class has none.
    id performSelector(SEL selector, std::span<const id> arguments = {});

    /// Identity, unless a class says otherwise.
    virtual bool isEqual(const NSObject& other) const { return this == &other; }
    virtual size_t hash() const { return std::hash<const void*>()(this); }
    /// The class's name, unless a class says otherwise.
    virtual NSString description() const;
};

/// Declares in the public part of a class body what every class of the runtime has, and registers the class while its
/// module is loaded, so that it is found by name before its first object. classObject() must not use variables that
/// other source files initialise at run time.
#define VEYRA_CLASS()                                                                                                  \
    static Class classObject();                                                                                        \
    static inline const Class registeredClass = classObject();                                                         \
    Class isa() const override {                                                                                       \
        return classObject();                                                                                          \
    }

} // namespace veyra
