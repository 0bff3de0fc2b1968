// Conversion of values between script and native code, and the wrappers by which scripts see value objects.
#include "Platform/WebKit/ScriptContext.h"

#include "Platform/WebKit/ScriptCall.h"
#include "Platform/WebKit/WebScriptObject.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

namespace veyra {

namespace {

// The text form of a value object, on the prototype of its kind.
JSValueRef describe(JSContextRef script, JSObjectRef, JSObjectRef thisObject, size_t, const JSValueRef[],
                    JSValueRef* exception) {
    const auto context = ScriptContext::existing(script);
    if (!context)
        return JSValueMakeUndefined(script);
    return ScriptCall::run(*context, script, exception, [&]() -> JSValueRef {
        const auto object = context->toNative(thisObject).object();
        if (!object || object->isKindOfClass(WebScriptObject::classObject()))
            throw NSException(NSInvalidArgumentException, "toString was called on an object that is no map value");
        return context->toScript(object->description());
    });
}

} // namespace

// What scripts see of a native class: attributes, each with its getter, and a prototype that tells the kind.
struct ScriptContext::ValueClass {
    struct Attribute {
        NSString key;
        SEL getter;
        JSStringRef scriptName;
    };
    ~ValueClass() {
        for (const Attribute& attribute : attributes)
            JSStringRelease(attribute.scriptName);
    }
    Class cls = nullptr;
    ScriptHelpers::Maker maker;
    std::vector<Attribute> attributes;
};

ScriptContext::~ScriptContext() = default;

void ScriptContext::defineHidden(JSObjectRef object, JSValueRef key, JSValueRef value) {
    JSObjectRef descriptor = makeBareObject(_context);
    JSStringRef name = JSStringCreateWithUTF8CString("value");
    JSObjectSetProperty(_context, descriptor, name, value, kJSPropertyAttributeNone, nullptr);
    JSStringRelease(name);
    const JSValueRef arguments[] = {object, key, descriptor};
    if (!JSObjectCallAsFunction(_context, _defineProperty, nullptr, 3, arguments, nullptr))
        throw NSException(NSInternalInconsistencyException, "The page has no stack left");
}

const ScriptHelpers::Maker& ScriptContext::makerOf(Class cls) {
    for (const auto& known : _valueClasses)
        if (known->cls == cls)
            return known->maker;
    return valueClassOf(cls, *cls->scripting().makeValueObject()).maker;
}

const ScriptContext::ValueClass& ScriptContext::valueClassOf(Class cls, const NSObject& object) {
    for (const auto& known : _valueClasses)
        if (known->cls == cls)
            return *known;
    const WebScripting& scripting = cls->scripting();
    auto made = std::make_shared<ValueClass>();
    made->cls = cls;
    std::vector<NSString> names;
    for (const NSString& key : object.attributeKeys()) {
        const std::string name = key.utf8();
        if (!scripting.isKeyExcludedFromWebScript || scripting.isKeyExcludedFromWebScript(name.c_str()))
            continue;
        const auto renamed = scripting.webScriptNameForKey ? scripting.webScriptNameForKey(name.c_str()) : std::nullopt;
        names.push_back(renamed.value_or(key));
        made->attributes.push_back({key, SEL(name.c_str()), makeString(names.back())});
    }
    made->maker = _helpers.makeMaker(names, cls);
    JSObjectRef prototype = made->maker.prototype;
    JSStringRef toStringName = JSStringCreateWithUTF8CString("toString");
    defineHidden(prototype, JSValueMakeString(_context, toStringName),
                 JSObjectMakeFunctionWithCallback(_context, toStringName, describe));
    JSStringRelease(toStringName);
    if (_toStringTag)
        defineHidden(prototype, _toStringTag, toScript(id(NSString(std::string_view(cls->name())))));
    _valueClasses.push_back(std::move(made));
    return *_valueClasses.back();
}

NSString ScriptContext::toString(JSStringRef string) {
    // The engine keeps most strings in bytes, and would make a copy in units first. What is ASCII, which UTF-8 tells by
    // its size, is taken from the bytes.
    constexpr size_t longest = 64, mostBytes = 3;
    const size_t length = JSStringGetLength(string);
    std::array<char, longest * mostBytes + 1> bytes;
    if (length <= longest && JSStringGetUTF8CString(string, bytes.data(), bytes.size()) == length + 1) {
        std::array<char16_t, longest> units;
        std::copy_n(bytes.begin(), length, units.begin());
        return NSString(std::u16string_view(units.data(), length));
    }
    static_assert(sizeof(JSChar) == sizeof(char16_t));
    return NSString(std::u16string_view(reinterpret_cast<const char16_t*>(JSStringGetCharactersPtr(string)), length));
}

JSStringRef ScriptContext::makeString(const NSString& string) {
    return JSStringCreateWithCharacters(reinterpret_cast<const JSChar*>(string.units().data()), string.length());
}

JSStringRef ScriptContext::keyString(const NSString& key) {
    static auto* const names = new std::unordered_map<NSString, JSStringRef>;
    const auto [entry, isNew] = names->try_emplace(key, nullptr);
    if (isNew)
        entry->second = makeString(key);
    return entry->second;
}

void ScriptContext::visitElement(JSValueRef element, ScriptValuesAhead& ahead,
                                 const std::function<void(const id&)>& visit) {
    struct Settling {
        ~Settling() { context.settle(firstArgument, firstWrapper); }
        ScriptContext& context;
        const size_t firstArgument, firstWrapper;
    } const settling{*this, _arguments.size(), _recentWrappers.size()};
    const id native = argumentToNative(element);
    const AnsweringAhead answering(native.as<WebScriptObject>(), ahead);
    visit(native);
}

id ScriptContext::toNative(JSValueRef value) {
    if (!isUsable())
        return id();
    switch (JSValueGetType(_context, value)) {
    case kJSTypeNull:
        return id();
    case kJSTypeBoolean:
        return id(JSValueToBoolean(_context, value));
    case kJSTypeNumber:
        return id(JSValueToNumber(_context, value, nullptr));
    case kJSTypeString: {
        JSStringRef string = JSValueToStringCopy(_context, value, nullptr);
        const NSString text = toString(string);
        JSStringRelease(string);
        return id(text);
    }
    case kJSTypeObject: {
        JSObjectRef object = JSValueToObject(_context, value, nullptr);
        if (auto native = unwrap(object))
            return id(std::move(native));
        return id(scriptObject(object, false));
    }
    default: // undefined, symbols, big integers
        return id(WebUndefined{});
    }
}

id ScriptContext::argumentToNative(JSValueRef value) {
    if (!isUsable() || !JSValueIsObject(_context, value))
        return toNative(value);
    JSObjectRef object = JSValueToObject(_context, value, nullptr);
    if (auto native = unwrap(object))
        return id(std::move(native));
    return id(scriptObject(object, true));
}

std::shared_ptr<WebScriptObject> ScriptContext::scriptObject(JSObjectRef object, bool isArgument) {
    const auto found = _objects.find(object);
    if (found != _objects.end()) {
        if (auto kept = found->second.lock())
            return kept;
        _objects.erase(found);
    }
    for (const auto& argument : _arguments)
        if (argument->_object == object)
            return argument;
    std::shared_ptr<WebScriptObject> made(new WebScriptObject(shared_from_this(), object));
    if (isArgument && _callDepth > 0) {
        _arguments.push_back(made);
    } else {
        made->_slot = keep(object);
        _objects[object] = made;
    }
    return made;
}

// Scripts may have written the attributes: they are read back when the object comes to native code.
void ScriptContext::refresh(NSObject& object, JSObjectRef script, const ValueClass& cls) {
    for (const auto& attribute : cls.attributes) {
        JSValueRef exception = nullptr;
        const JSValueRef value = JSObjectGetProperty(_context, script, attribute.scriptName, &exception);
        if (exception)
            reportException(exception);
        if (!isUsable())
            return;
        if (exception)
            continue;
        const id number = toNative(value);
        object.setValueForKey(number.isNumber() || number.isString() ? number : id(0.0), attribute.key);
    }
}

std::shared_ptr<NSObject> ScriptContext::unwrap(JSObjectRef object) {
    const JSValueRef prototype = JSObjectGetPrototype(_context, object);
    const auto cls = std::find_if(_valueClasses.begin(), _valueClasses.end(),
                                  [&](const auto& known) { return known->maker.prototype == prototype; });
    if (cls == _valueClasses.end())
        return nullptr;
    const ValueClass& known = **cls;
    std::shared_ptr<NSObject> native;
    for (const auto* wrappers : {&_recentWrappers, &_keptWrappers})
        for (const Wrapper& wrapper : *wrappers)
            if (wrapper.script == object)
                native = wrapper.object;
    if (!native) {
        // Native code has let go of the object that this one was made for.
        const auto make = known.cls->scripting().makeValueObject;
        if (!make)
            return nullptr;
        native = make();
        if (_callDepth > 0)
            _recentWrappers.push_back({native, object, 0});
    }
    refresh(*native, object, known);
    return native;
}

// All attributes of value objects are numbers.
JSValueRef ScriptContext::wrap(const std::shared_ptr<NSObject>& object) {
    for (const auto* wrappers : {&_recentWrappers, &_keptWrappers})
        for (const Wrapper& wrapper : *wrappers)
            if (wrapper.object == object)
                return wrapper.script;
    const ValueClass& cls = valueClassOf(object->isa(), *object);
    double* number = cls.maker.numbers;
    for (const auto& attribute : cls.attributes)
        *number++ = object->performSelector(attribute.getter).doubleValue();
    JSValueRef exception = nullptr;
    const JSValueRef made = JSObjectCallAsFunction(_context, cls.maker.function, nullptr, 0, nullptr, &exception);
    if (exception)
        return JSValueMakeUndefined(_context); // out of stack
    if (_callDepth > 0)
        _recentWrappers.push_back({object, const_cast<JSObjectRef>(made), 0});
    return made;
}

// The elements are there before they are set: setting one that is not would call a setter that the page has put on a
// prototype.
JSObjectRef ScriptContext::makeArray(const NSArray& elements) {
    const std::vector<JSValueRef> nothing(elements.size(), JSValueMakeUndefined(_context));
    JSObjectRef array = JSObjectMakeArray(_context, nothing.size(), nothing.data(), nullptr);
    if (!array)
        throw std::bad_alloc();
    for (size_t i = 0; i < elements.size(); ++i)
        JSObjectSetPropertyAtIndex(_context, array, static_cast<unsigned>(i), toScript(elements[i]), nullptr);
    return array;
}

JSValueRef ScriptContext::toScript(const id& value) {
    if (!isUsable() || value.isUndefined())
        return JSValueMakeUndefined(_context);
    if (value.isNil())
        return JSValueMakeNull(_context);
    if (value.isBoolean())
        return JSValueMakeBoolean(_context, value.boolValue());
    if (value.isNumber())
        return JSValueMakeNumber(_context, value.doubleValue());
    if (const NSString* string = value.string()) {
        JSStringRef text = makeString(*string);
        const JSValueRef result = JSValueMakeString(_context, text);
        JSStringRelease(text);
        return result;
    }
    if (const NSArray* elements = value.array())
        return makeArray(*elements);
    if (const auto script = value.as<WebScriptObject>()) {
        JSObjectRef object = script->scriptObject();
        return object ? static_cast<JSValueRef>(object) : JSValueMakeNull(_context);
    }
    return wrap(value.object());
}

} // namespace veyra
