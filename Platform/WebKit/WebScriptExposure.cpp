#include "Platform/WebKit/WebScriptExposure.h"

#include "Platform/WebKit/ScriptCall.h"

#include <array>
#include <stdexcept>
#include <utility>

namespace veyra {

namespace {

struct ExposedKey {
    JSStringRef scriptName;
    Method getter;
    Method setter;
    bool setsBoolean;
};

struct ExposedMethod {
    JSStringRef scriptName;
    Method method;
    std::vector<bool> booleans; // of the parameters, in order
};

// Made once: a native function of the engine carries no data, so that each name has a function of its own that knows
// its place in these lists.
struct Exposure {
    ScriptObjectResolver resolver = nullptr;
    std::vector<ExposedKey> keys;
    std::vector<ExposedMethod> methods;
};

Exposure& exposure() {
    static auto* made = new Exposure;
    return *made;
}

constexpr size_t maximumKeys = 24;
constexpr size_t maximumMethods = 32;
constexpr size_t maximumParameters = 4;

JSValueRef throwError(JSContextRef script, JSValueRef* exception, const char* type, const char* message) {
    JSStringRef name = JSStringCreateWithUTF8CString(type);
    const JSValueRef constructor = JSObjectGetProperty(script, JSContextGetGlobalObject(script), name, nullptr);
    JSStringRelease(name);
    JSStringRef text = JSStringCreateWithUTF8CString(message);
    const JSValueRef argument = JSValueMakeString(script, text);
    JSStringRelease(text);
    *exception = nullptr;
    if (constructor && JSValueIsObject(script, constructor))
        *exception =
            JSObjectCallAsConstructor(script, JSValueToObject(script, constructor, nullptr), 1, &argument, nullptr);
    if (!*exception)
        *exception = JSObjectMakeError(script, 1, &argument, nullptr);
    return JSValueMakeUndefined(script);
}

JSValueRef throwPageGone(JSContextRef script, JSValueRef* exception) {
    return throwError(script, exception, "ReferenceError", "The page of this map has gone");
}

// Getters run no script, so that neither the context nor the object needs to be held for them. Making a script object
// of the result may: a page can put a setter on a prototype.
JSValueRef readKey(size_t index, JSContextRef script, JSObjectRef thisObject, JSValueRef* exception) {
    ScriptContext* const context = ScriptContext::find(script);
    if (!context)
        return throwPageGone(script, exception);
    NSObject* const object = exposure().resolver(script, thisObject);
    if (!object)
        return JSValueMakeUndefined(script);
    std::shared_ptr<ScriptContext> held; // outlives the call
    return ScriptCall::run(*context, script, exception, [&] {
        const id value = exposure().keys[index].getter.implementation(*object, {});
        if (value.isObject())
            held = context->shared_from_this();
        return context->toScript(value);
    });
}

// What an assignment does on an object that is no map: it makes an ordinary property.
void defineOwnProperty(ScriptContext& context, JSContextRef script, JSObjectRef object, JSStringRef name,
                       JSValueRef value, JSValueRef* exception) {
    JSObjectRef descriptor = JSObjectMake(script, nullptr, nullptr);
    const auto set = [&](const char* key, JSValueRef entry) {
        JSStringRef text = JSStringCreateWithUTF8CString(key);
        JSObjectSetProperty(script, descriptor, text, entry, kJSPropertyAttributeNone, nullptr);
        JSStringRelease(text);
    };
    const JSValueRef yes = JSValueMakeBoolean(script, true);
    set("value", value);
    set("writable", yes);
    set("enumerable", yes);
    set("configurable", yes);
    const JSValueRef arguments[] = {object, JSValueMakeString(script, name), descriptor};
    JSObjectCallAsFunction(script, context.definePropertyFunction(), nullptr, 3, arguments, exception);
}

JSValueRef writeKey(size_t index, JSContextRef script, JSObjectRef thisObject, JSValueRef value,
                    JSValueRef* exception) {
    const auto context = ScriptContext::existing(script);
    if (!context)
        return throwPageGone(script, exception);
    const ExposedKey& key = exposure().keys[index];
    NSObject* const found = exposure().resolver(script, thisObject);
    if (!found) {
        defineOwnProperty(*context, script, thisObject, key.scriptName, value, exception);
        return JSValueMakeUndefined(script);
    }
    const auto object = found->shared_from_this();
    return ScriptCall::run(*context, script, exception, [&]() -> JSValueRef {
        const id argument = key.setsBoolean ? id(JSValueToBoolean(script, value)) : context->argumentToNative(value);
        key.setter.implementation(*object, std::span(&argument, 1));
        return nullptr;
    });
}

JSValueRef callMethod(size_t index, JSContextRef script, JSObjectRef thisObject, size_t count,
                      const JSValueRef values[], JSValueRef* exception) {
    const auto context = ScriptContext::existing(script);
    if (!context)
        return throwPageGone(script, exception);
    NSObject* const found = exposure().resolver(script, thisObject);
    if (!found)
        return throwError(script, exception, "TypeError", "The method was called on an object that is no map");
    const auto object = found->shared_from_this();
    return ScriptCall::run(*context, script, exception, [&]() -> JSValueRef {
        const ExposedMethod& exposed = exposure().methods[index];
        std::array<id, maximumParameters> arguments;
        const size_t parameters = exposed.booleans.size();
        for (size_t i = 0; i < parameters; ++i) {
            const JSValueRef value = i < count ? values[i] : nullptr;
            if (exposed.booleans[i])
                arguments[i] = id(value && JSValueToBoolean(script, value));
            else
                arguments[i] = value ? context->argumentToNative(value) : id(WebUndefined{});
        }
        const id result = exposed.method.implementation(*object, std::span(arguments).first(parameters));
        return result.isNil() ? nullptr : context->toScript(result);
    });
}

template <size_t I>
JSValueRef getterFunction(JSContextRef script, JSObjectRef, JSObjectRef thisObject, size_t, const JSValueRef[],
                          JSValueRef* exception) {
    return readKey(I, script, thisObject, exception);
}

template <size_t I>
JSValueRef setterFunction(JSContextRef script, JSObjectRef, JSObjectRef thisObject, size_t count,
                          const JSValueRef values[], JSValueRef* exception) {
    return writeKey(I, script, thisObject, count ? values[0] : JSValueMakeUndefined(script), exception);
}

template <size_t I>
JSValueRef methodFunction(JSContextRef script, JSObjectRef, JSObjectRef thisObject, size_t count,
                          const JSValueRef values[], JSValueRef* exception) {
    return callMethod(I, script, thisObject, count, values, exception);
}

template <size_t... I>
constexpr auto getterFunctions(std::index_sequence<I...>) {
    return std::array<JSObjectCallAsFunctionCallback, sizeof...(I)>{getterFunction<I>...};
}
template <size_t... I>
constexpr auto setterFunctions(std::index_sequence<I...>) {
    return std::array<JSObjectCallAsFunctionCallback, sizeof...(I)>{setterFunction<I>...};
}
template <size_t... I>
constexpr auto methodFunctions(std::index_sequence<I...>) {
    return std::array<JSObjectCallAsFunctionCallback, sizeof...(I)>{methodFunction<I>...};
}

constexpr auto getters = getterFunctions(std::make_index_sequence<maximumKeys>{});
constexpr auto setters = setterFunctions(std::make_index_sequence<maximumKeys>{});
constexpr auto methods = methodFunctions(std::make_index_sequence<maximumMethods>{});

// "mapType" -> "setMapType:"
std::string setterSelector(std::string key) {
    if (key[0] >= 'a' && key[0] <= 'z')
        key[0] = static_cast<char>(key[0] - 'a' + 'A');
    return "set" + key + ":";
}

void collectKeys(Class cls, const std::vector<NSString>& keys) {
    const WebScripting& scripting = cls->scripting();
    for (const NSString& key : keys) {
        const std::string name = key.utf8();
        if (!scripting.isKeyExcludedFromWebScript || scripting.isKeyExcludedFromWebScript(name.c_str()))
            continue;
        const auto getter = cls->method(SEL(name.c_str()));
        const auto setter = cls->method(SEL(setterSelector(name).c_str()));
        if (!getter || !setter)
            throw std::logic_error("script key without accessors: " + name);
        const auto renamed = scripting.webScriptNameForKey ? scripting.webScriptNameForKey(name.c_str()) : std::nullopt;
        exposure().keys.push_back(
            {ScriptContext::makeString(renamed.value_or(key)), *getter, *setter, setter->types[3] == 'c'});
    }
}

void collectMethods(Class cls) {
    const WebScripting& scripting = cls->scripting();
    for (const Method& method : cls->methods()) {
        if (!scripting.isSelectorExcludedFromWebScript || scripting.isSelectorExcludedFromWebScript(method.selector))
            continue;
        const auto name = scripting.webScriptNameForSelector(method.selector);
        std::vector<bool> booleans;
        for (size_t i = 3; i < method.types.size(); ++i)
            booleans.push_back(method.types[i] == 'c');
        exposure().methods.push_back({ScriptContext::makeString(*name), method, std::move(booleans)});
    }
}

class PropertyDefiner {
public:
    PropertyDefiner(ScriptContext& context, JSObjectRef target) : _context(context), _target(target) {}

    void accessor(JSStringRef name, JSObjectRef getter, JSObjectRef setter) const {
        JSObjectRef descriptor = makeDescriptor();
        set(descriptor, "get", getter);
        set(descriptor, "set", setter);
        define(name, descriptor);
    }
    void function(JSStringRef name, JSObjectRef function) const {
        JSObjectRef descriptor = makeDescriptor();
        set(descriptor, "value", function);
        set(descriptor, "writable", JSValueMakeBoolean(script(), true));
        define(name, descriptor);
    }

private:
    JSContextRef script() const { return _context.globalContext(); }
    JSObjectRef makeDescriptor() const {
        JSObjectRef descriptor = JSObjectMake(script(), nullptr, nullptr);
        set(descriptor, "configurable", JSValueMakeBoolean(script(), true));
        return descriptor;
    }
    void set(JSObjectRef object, const char* key, JSValueRef value) const {
        JSStringRef text = JSStringCreateWithUTF8CString(key);
        JSObjectSetProperty(script(), object, text, value, kJSPropertyAttributeNone, nullptr);
        JSStringRelease(text);
    }
    void define(JSStringRef name, JSObjectRef descriptor) const {
        const JSValueRef arguments[] = {_target, JSValueMakeString(script(), name), descriptor};
        JSObjectCallAsFunction(script(), _context.definePropertyFunction(), nullptr, 3, arguments, nullptr);
    }

    ScriptContext& _context;
    JSObjectRef const _target;
};

} // namespace

void exposeClass(ScriptContext& context, JSObjectRef target, Class cls, const std::vector<NSString>& keys,
                 ScriptObjectResolver resolver) {
    Exposure& shared = exposure();
    if (!shared.resolver) {
        shared.resolver = resolver;
        collectKeys(cls, keys);
        collectMethods(cls);
        if (shared.keys.size() > maximumKeys || shared.methods.size() > maximumMethods)
            throw std::logic_error("more script names than native functions");
    }
    const JSContextRef script = context.globalContext();
    const PropertyDefiner definer(context, target);
    for (size_t i = 0; i < shared.keys.size(); ++i) {
        JSStringRef name = shared.keys[i].scriptName;
        definer.accessor(name, JSObjectMakeFunctionWithCallback(script, name, getters[i]),
                         JSObjectMakeFunctionWithCallback(script, name, setters[i]));
    }
    for (size_t i = 0; i < shared.methods.size(); ++i) {
        JSStringRef name = shared.methods[i].scriptName;
        definer.function(name, JSObjectMakeFunctionWithCallback(script, name, methods[i]));
    }
}

} // namespace veyra
