#include "Platform/WebKit/WebScriptExposure.h"

#include "Platform/WebKit/ScriptCall.h"
#include "Platform/WebKit/ScriptNumericArgument.h"
#include "Platform/WebKit/WebScriptObject.h"
#include "Platform/WebKit/WebThread.h"

#include <algorithm>
#include <array>
#include <optional>
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
    NSString name;
    Method method;
    std::vector<bool> booleans;    // of the parameters, in order
    std::optional<size_t> numeric; // its place among the numeric methods
};

struct NumericMethod {
    const WebNumericMethod* method;
    size_t exposed;              // its place among the methods
    std::vector<NSString> reads; // the keys in the order in which they are read of a script object
};

// Made once: a native function of the engine carries no data, so that each name has a function of its own that knows
// its place in these lists.
struct Exposure {
    ScriptObjectResolver resolver = nullptr;
    std::vector<ExposedKey> keys;
    std::vector<ExposedMethod> methods;
    std::vector<NumericMethod> numericMethods;
};

Exposure& exposure() {
    static auto* made = new Exposure;
    return *made;
}

struct Departure {
    JSObjectRef thisObject;
    std::shared_ptr<NSObject> object;
};

// Of this turn of the web thread, in their order.
std::vector<Departure>& departures() {
    static auto* made = new std::vector<Departure>;
    return *made;
}

/// The object that was behind `thisObject` before the last `count` departures, if it is one of them.
std::shared_ptr<NSObject> objectBefore(size_t count, JSObjectRef thisObject) {
    const auto& all = departures();
    for (size_t i = all.size() - std::min(count, all.size()); i < all.size(); ++i)
        if (all[i].thisObject == thisObject)
            return all[i].object;
    return nullptr;
}

constexpr size_t maximumKeys = 24;
constexpr size_t maximumMethods = 32;
constexpr size_t maximumNumericMethods = 8;
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

// Neither getters nor the making of their results run a page's script, so that neither the context nor the object needs
// to be held for them.
JSValueRef readKey(size_t index, JSContextRef script, JSObjectRef thisObject, JSValueRef* exception) {
    ScriptContext* const context = ScriptContext::find(script);
    if (!context)
        return throwPageGone(script, exception);
    NSObject* const object = exposure().resolver(script, thisObject);
    if (!object)
        return JSValueMakeUndefined(script);
    return ScriptCall::run(*context, script, exception, [&] {
        return context->toScript(exposure().keys[index].getter.implementation(*object, {}));
    });
}

// What an assignment does on an object that is no map: it makes an ordinary property.
void defineOwnProperty(ScriptContext& context, JSContextRef script, JSObjectRef object, JSStringRef name,
                       JSValueRef value, JSValueRef* exception) {
    JSObjectRef descriptor = ScriptContext::makeBareObject(script);
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
    SelfSharingObject* const found = exposure().resolver(script, thisObject);
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
                      const JSValueRef values[], JSValueRef* exception, ScriptValuesAhead* ahead = nullptr,
                      std::shared_ptr<NSObject> object = nullptr) {
    const auto context = ScriptContext::existing(script);
    if (!context)
        return throwPageGone(script, exception);
    if (!object) {
        SelfSharingObject* const found = exposure().resolver(script, thisObject);
        if (!found)
            return throwError(script, exception, "TypeError", "The method was called on an object that is no map");
        object = found->shared_from_this();
    }
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
        std::optional<AnsweringAhead> answering;
        if (ahead)
            answering.emplace(arguments[0].as<WebScriptObject>(), *ahead);
        const id result = exposed.method.implementation(*object, std::span(arguments).first(parameters));
        return result.isNil() ? nullptr : context->toScript(result);
    });
}

// See ScriptHelpers::makeNumericFunction for the three functions that it calls.

JSValueRef computeNumbers(size_t index, JSContextRef script, size_t count, const JSValueRef values[]) {
    const WebNumericMethod& method = *exposure().numericMethods[index].method;
    ScriptContext* const context = ScriptContext::find(script);
    if (!context || count == 0 || !JSValueIsObject(script, values[0]))
        return JSValueMakeBoolean(script, false);
    try {
        // Copied, as the object may come into being only now.
        std::array<double, ScriptHelpers::maximumArguments> arguments;
        std::copy_n(context->helpers().arguments(), arguments.size(), arguments.begin());
        const NSObject* object = exposure().resolver(script, const_cast<JSObjectRef>(values[0]));
        if (!object)
            return JSValueMakeBoolean(script, false);
        method.compute(*object, arguments.data(), context->makerOf(method.result).numbers);
    } catch (const std::exception&) {
        return JSValueMakeBoolean(script, false); // the method reports it
    }
    return JSValueMakeUndefined(script);
}

JSValueRef makerOfResult(size_t index, JSContextRef script) {
    return ScriptContext::find(script)->makerOf(exposure().numericMethods[index].method->result).function;
}

JSValueRef proceedWithMethod(size_t index, JSContextRef script, size_t count, const JSValueRef values[],
                             JSValueRef* exception) {
    constexpr size_t firstNumber = 6;
    const NumericMethod& numeric = exposure().numericMethods[index];
    const auto number = [&](size_t i) { return static_cast<size_t>(JSValueToNumber(script, values[i], nullptr)); };
    ScriptNumericArgument ahead(script, numeric.reads, std::span(values, count).subspan(firstNumber, number(2)),
                                static_cast<ScriptReadEnd>(number(3)), values[4]);
    JSObjectRef thisObject = JSValueIsObject(script, values[0]) ? JSValueToObject(script, values[0], nullptr) : nullptr;
    return callMethod(numeric.exposed, script, thisObject, 1, values + 1, exception, &ahead,
                      objectBefore(number(5), thisObject));
}

template <size_t I>
JSValueRef computeFunction(JSContextRef script, JSObjectRef, JSObjectRef, size_t count, const JSValueRef values[],
                           JSValueRef*) {
    return computeNumbers(I, script, count, values);
}

template <size_t I>
JSValueRef makerFunction(JSContextRef script, JSObjectRef, JSObjectRef, size_t, const JSValueRef[], JSValueRef*) {
    return makerOfResult(I, script);
}

template <size_t I>
JSValueRef proceedFunction(JSContextRef script, JSObjectRef, JSObjectRef, size_t count, const JSValueRef values[],
                           JSValueRef* exception) {
    return proceedWithMethod(I, script, count, values, exception);
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

template <size_t... I>
constexpr auto computeFunctions(std::index_sequence<I...>) {
    return std::array<JSObjectCallAsFunctionCallback, sizeof...(I)>{computeFunction<I>...};
}
template <size_t... I>
constexpr auto makerFunctions(std::index_sequence<I...>) {
    return std::array<JSObjectCallAsFunctionCallback, sizeof...(I)>{makerFunction<I>...};
}
template <size_t... I>
constexpr auto proceedFunctions(std::index_sequence<I...>) {
    return std::array<JSObjectCallAsFunctionCallback, sizeof...(I)>{proceedFunction<I>...};
}

constexpr auto getters = getterFunctions(std::make_index_sequence<maximumKeys>{});
constexpr auto setters = setterFunctions(std::make_index_sequence<maximumKeys>{});
constexpr auto methods = methodFunctions(std::make_index_sequence<maximumMethods>{});
constexpr auto computers = computeFunctions(std::make_index_sequence<maximumNumericMethods>{});
constexpr auto makers = makerFunctions(std::make_index_sequence<maximumNumericMethods>{});
constexpr auto proceeders = proceedFunctions(std::make_index_sequence<maximumNumericMethods>{});

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
        exposure().methods.push_back({ScriptContext::makeString(*name), *name, method, std::move(booleans), {}});
    }
}

void collectNumericMethods(Class cls) {
    if (!cls->scripting().numericMethods)
        return;
    for (const WebNumericMethod& numeric : cls->scripting().numericMethods()) {
        auto& exposed = exposure().methods;
        const auto found = std::find_if(exposed.begin(), exposed.end(),
                                        [&](const auto& known) { return known.method.selector == numeric.selector; });
        if (found == exposed.end())
            continue;
        found->numeric = exposure().numericMethods.size();
        auto reads = numeric.argument->scripting().makeValueObject()->attributeKeys();
        reads.insert(reads.end(), numeric.reads.begin(), numeric.reads.end());
        exposure().numericMethods.push_back({&numeric, static_cast<size_t>(found - exposed.begin()), std::move(reads)});
    }
}

JSObjectRef makeFunction(ScriptContext& context, size_t index) {
    const JSContextRef script = context.globalContext();
    const ExposedMethod& exposed = exposure().methods[index];
    if (!exposed.numeric)
        return JSObjectMakeFunctionWithCallback(script, exposed.scriptName, methods[index]);
    const size_t numeric = *exposed.numeric;
    const auto make = [script](JSObjectCallAsFunctionCallback callback) {
        return JSObjectMakeFunctionWithCallback(script, nullptr, callback);
    };
    try {
        return context.helpers().makeNumericFunction(exposed.name, *exposure().numericMethods[numeric].method,
                                                     make(computers[numeric]), make(proceeders[numeric]),
                                                     make(makers[numeric]));
    } catch (const std::exception&) { // no stack left, where a script has just made the page
        return JSObjectMakeFunctionWithCallback(script, exposed.scriptName, methods[index]);
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
        JSObjectRef descriptor = ScriptContext::makeBareObject(script());
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

void objectLeaves(JSObjectRef thisObject, std::shared_ptr<NSObject> object) {
    if (departures().empty())
        webThread().async([] { departures().clear(); });
    departures().push_back({thisObject, std::move(object)});
    ScriptContext::noteDeparture();
}

void exposeClass(ScriptContext& context, JSObjectRef target, Class cls, const std::vector<NSString>& keys,
                 ScriptObjectResolver resolver) {
    Exposure& shared = exposure();
    if (!shared.resolver) {
        shared.resolver = resolver;
        collectKeys(cls, keys);
        collectMethods(cls);
        collectNumericMethods(cls);
        if (shared.keys.size() > maximumKeys || shared.methods.size() > maximumMethods ||
            shared.numericMethods.size() > maximumNumericMethods)
            throw std::logic_error("more script names than native functions");
    }
    const JSContextRef script = context.globalContext();
    const PropertyDefiner definer(context, target);
    for (size_t i = 0; i < shared.keys.size(); ++i) {
        JSStringRef name = shared.keys[i].scriptName;
        definer.accessor(name, JSObjectMakeFunctionWithCallback(script, name, getters[i]),
                         JSObjectMakeFunctionWithCallback(script, name, setters[i]));
    }
    for (size_t i = 0; i < shared.methods.size(); ++i)
        definer.function(shared.methods[i].scriptName, makeFunction(context, i));
}

} // namespace veyra
