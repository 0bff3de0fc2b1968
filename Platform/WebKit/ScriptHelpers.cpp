#include "Platform/WebKit/ScriptHelpers.h"

#include "Platform/Foundation/NSException.h"
#include "Platform/WebKit/ScriptContext.h"

#include <algorithm>
#include <new>

namespace veyra {

namespace {

// A private field tells our value objects from all others, without a page's noticing. The field of an object that is a
// proxy is not that of its target.
constexpr const char* valueClassSource = R"((class Value {
    #kind;
    constructor(kind) { this.#kind = kind; }
    static kindOf(object) { return #kind in object ? object.#kind : 0; }
}))";

/// The number that tells objects of that class.
double kindNumber(Class cls) {
    static auto* const kinds = new std::vector<Class>;
    const auto found = std::find(kinds->begin(), kinds->end(), cls);
    const auto index = found - kinds->begin();
    if (found == kinds->end())
        kinds->push_back(cls);
    return static_cast<double>(index + 1);
}

/// A context that is no page's, one for all pages of a virtual machine: what is protected in it keeps no page alive.
std::shared_ptr<OpaqueJSContext> contextOfNoPage(JSContextRef page) {
    static auto* const contexts = new std::unordered_map<JSContextGroupRef, std::weak_ptr<OpaqueJSContext>>;
    const JSContextGroupRef group = JSContextGetGroup(page);
    std::weak_ptr<OpaqueJSContext>& known = (*contexts)[group];
    auto context = known.lock();
    if (!context) {
        context.reset(JSGlobalContextCreateInGroup(group, nullptr), JSGlobalContextRelease);
        known = context;
    }
    return context;
}

std::string quoted(const NSString& name) {
    return '"' + name.utf8() + '"';
}

// Fields are defined, not assigned: no setter on a prototype is called. The constructor is the page's way to the class.
std::string makerSource(const std::vector<NSString>& names) {
    std::string fields;
    for (size_t i = 0; i < names.size(); ++i)
        fields += quoted(names[i]) + " = numbers[" + std::to_string(i) + "];\n";
    return "(function (Value, kind, numbers) { 'use strict';\nclass Made extends Value {\n" + fields +
           "constructor() { super(kind); }\n}\ndelete Made.prototype.constructor;\n"
           "return () => new Made(); })";
}

// The text of reading one key into a variable of its own.
std::string readSource(const NSString& key, size_t count) {
    return "if (typeof (last = object[" + quoted(key) + "]) !== 'number' || stop[0] !== 0) { end = 1; break read; }\n" +
           "v" + std::to_string(count) + " = last; n = " + std::to_string(count + 1) + ";\n";
}

// All values are read before the shared array is written: a getter may call the same function. An object of the
// method's own kind is not looked over first; what has been read of one is read again where numbers are not enough.
std::string numericSource(const NSString& name, const WebNumericMethod& method, const std::vector<NSString>& keys) {
    std::string variables, checks, reads, stores;
    for (size_t i = 0; i < 2 * keys.size(); ++i)
        variables += ", v" + std::to_string(i);
    for (size_t i = 0; i < keys.size(); ++i) {
        checks += readSource(keys[i], i);
        reads += readSource(method.reads[i], keys.size() + i);
        const auto attribute = std::find(keys.begin(), keys.end(), method.reads[i]) - keys.begin();
        stores += "numbers[" + std::to_string(attribute) + "] = v" + std::to_string(keys.size() + i) + ";\n";
    }
    return "(function (compute, proceed, maker, kindOf, own, numbers, stop) { 'use strict';\nlet make;\nreturn { " +
           quoted(name) + "(object = undefined) {\nconst left = stop[1];\nlet n = 0, end = 0, kind = 0, last" +
           variables +
           ";\nread: if (typeof object === 'object' && object !== null && stop[0] === 0) {\nkind = kindOf(object);\n"
           "if (kind !== 0 && kind !== own) break read;\ntry {\nif (kind === 0) {\n" +
           checks + "}\n" + reads + "} catch (error) { end = 2; last = error; break read; }\n" + stores +
           "if (stop[1] === left && compute(this) === undefined) {\nif (make === undefined) make = maker();\nreturn "
           "make();\n}\n}\nif "
           "(kind !== 0) n = end = 0;\n"
           "return proceed(this, object, n, end, last, stop[1] - left" +
           variables + ");\n} }[" + quoted(name) + "]; })";
}

} // namespace

JSObjectRef ScriptHelpers::evaluate(const std::string& source) {
    const JSContextRef script = _context.globalContext();
    JSStringRef text = JSStringCreateWithUTF8CString(source.c_str());
    const JSValueRef result = JSEvaluateScript(script, text, nullptr, nullptr, 1, nullptr);
    JSStringRelease(text);
    return made(result);
}

JSObjectRef ScriptHelpers::call(JSObjectRef function, std::initializer_list<JSValueRef> arguments) {
    return made(JSObjectCallAsFunction(_context.globalContext(), function, nullptr, arguments.size(), arguments.begin(),
                                       nullptr));
}

JSObjectRef ScriptHelpers::made(JSValueRef value) const {
    if (!value)
        throw NSException(NSInternalInconsistencyException, "The page has no stack left");
    return JSValueToObject(_context.globalContext(), value, nullptr);
}

JSObjectRef ScriptHelpers::makeArray(JSContextRef script, size_t count, double*& numbers) {
    JSObjectRef array = JSObjectMakeTypedArray(script, kJSTypedArrayTypeFloat64Array, count, nullptr);
    if (!array)
        throw std::bad_alloc();
    numbers = static_cast<double*>(JSObjectGetTypedArrayBytesPtr(script, array, nullptr));
    return array;
}

const ScriptHelpers::Shared& ScriptHelpers::shared() {
    if (_shared.valueClass)
        return _shared;
    const JSContextRef script = _context.globalContext();
    Shared fresh;
    fresh.argumentArray = makeArray(script, maximumArguments, fresh.arguments);
    fresh.stopOwner = contextOfNoPage(script);
    fresh.stopArray = makeArray(fresh.stopOwner.get(), 2, fresh.stop);
    fresh.valueClass = evaluate(valueClassSource);
    JSStringRef name = JSStringCreateWithUTF8CString("kindOf");
    fresh.kindOf = made(JSObjectGetProperty(script, fresh.valueClass, name, nullptr)); // kept by the class
    JSStringRelease(name);
    for (JSObjectRef object : {fresh.argumentArray, fresh.valueClass})
        _context.keep(object);
    JSValueProtect(fresh.stopOwner.get(), fresh.stopArray);
    return _shared = fresh;
}

ScriptHelpers::Maker ScriptHelpers::makeMaker(const std::vector<NSString>& names, Class kind) {
    const JSContextRef script = _context.globalContext();
    Maker maker;
    JSObjectRef array = makeArray(script, names.size(), maker.numbers);
    maker.function =
        call(evaluate(makerSource(names)), {shared().valueClass, JSValueMakeNumber(script, kindNumber(kind)), array});
    maker.prototype = made(JSObjectGetPrototype(script, call(maker.function, {}))); // kept by the function
    _context.keep(maker.function);
    JSObjectSetPrototype(script, maker.prototype, JSObjectGetPrototype(script, JSObjectMake(script, nullptr, nullptr)));
    return maker;
}

JSObjectRef ScriptHelpers::makeNumericFunction(const NSString& name, const WebNumericMethod& method,
                                               JSObjectRef compute, JSObjectRef proceed, JSObjectRef maker) {
    const Shared& common = shared();
    const auto keys = method.argument->scripting().makeValueObject()->attributeKeys();
    return call(evaluate(numericSource(name, method, keys)),
                {compute, proceed, maker, common.kindOf,
                 JSValueMakeNumber(_context.globalContext(), kindNumber(method.argument)), common.argumentArray,
                 common.stopArray});
}

void ScriptHelpers::setStopped(bool stopped) {
    if (_shared.stop)
        *_shared.stop = stopped;
}

void ScriptHelpers::noteDeparture() {
    if (_shared.stop)
        ++_shared.stop[1];
}

// The page may be gone with all that it kept, or its script may be running a helper just now.
void ScriptHelpers::end() {
    setStopped(true);
    if (_shared.stopOwner)
        JSValueUnprotect(_shared.stopOwner.get(), _shared.stopArray);
    _shared.stopOwner = nullptr;
    _shared.stop = nullptr;
}

} // namespace veyra
