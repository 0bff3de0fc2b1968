// Conversion of values between script and native code, and the wrappers by which scripts see value objects.
#include "Platform/WebKit/ScriptContext.h"

#include "Platform/WebKit/ScriptCall.h"
#include "Platform/WebKit/WebScriptObject.h"

#include <algorithm>
#include <utility>

namespace veyra {

namespace {

// A wrapper's private data: the object that it shows. Taken away by the collector.
using WrapperData = std::shared_ptr<NSObject>;

void finalizeWrapper(JSObjectRef wrapper) {
    delete static_cast<WrapperData*>(JSObjectGetPrivate(wrapper));
}

JSClassRef wrapperBaseClass() {
    static JSClassRef base = [] {
        JSClassDefinition definition = kJSClassDefinitionEmpty;
        definition.className = "VeyraObject";
        definition.finalize = finalizeWrapper;
        return JSClassCreate(&definition);
    }();
    return base;
}

JSValueRef describeWrapper(JSContextRef script, JSObjectRef, JSObjectRef thisObject, size_t, const JSValueRef[],
                           JSValueRef* exception) {
    const auto context = ScriptContext::existing(script);
    if (!context)
        return JSValueMakeUndefined(script);
    return ScriptCall::run(*context, script, exception, [&]() -> JSValueRef {
        if (!JSValueIsObjectOfClass(script, thisObject, wrapperBaseClass()))
            throw NSException(NSInvalidArgumentException, "toString was called on an object that is no map value");
        return context->toScript(context->toNative(thisObject).object()->description());
    });
}

// What scripts see of a native class: its script class and the names of its attributes.
struct WrapperClass {
    struct Attribute {
        NSString key;
        JSStringRef scriptName;
    };
    JSClassRef scriptClass;
    std::vector<Attribute> attributes;
};

const WrapperClass& wrapperClassOf(const NSObject& object) {
    static auto* classes = new std::unordered_map<Class, WrapperClass>;
    const Class cls = object.isa();
    const auto found = classes->find(cls);
    if (found != classes->end())
        return found->second;

    static const JSStaticFunction functions[] = {{"toString", describeWrapper, kJSPropertyAttributeDontEnum},
                                                 {nullptr, nullptr, kJSPropertyAttributeNone}};
    JSClassDefinition definition = kJSClassDefinitionEmpty;
    definition.className = cls->name().c_str();
    definition.parentClass = wrapperBaseClass();
    definition.staticFunctions = functions;
    WrapperClass result{JSClassCreate(&definition), {}};
    const WebScripting& scripting = cls->scripting();
    for (const NSString& key : object.attributeKeys()) {
        const std::string name = key.utf8();
        if (!scripting.isKeyExcludedFromWebScript || scripting.isKeyExcludedFromWebScript(name.c_str()))
            continue;
        const auto renamed = scripting.webScriptNameForKey ? scripting.webScriptNameForKey(name.c_str()) : std::nullopt;
        result.attributes.push_back({key, ScriptContext::makeString(renamed.value_or(key))});
    }
    return classes->emplace(cls, std::move(result)).first->second;
}

} // namespace

NSString ScriptContext::toString(JSStringRef string) {
    const JSChar* units = JSStringGetCharactersPtr(string);
    static_assert(sizeof(JSChar) == sizeof(char16_t));
    return NSString(std::u16string_view(reinterpret_cast<const char16_t*>(units), JSStringGetLength(string)));
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

void ScriptContext::visitElement(JSValueRef element, WebScriptObjectValues& ahead,
                                 const std::function<void(const id&)>& visit) {
    struct Settling {
        ~Settling() { context.settle(firstArgument, firstWrapper); }
        ScriptContext& context;
        const size_t firstArgument, firstWrapper;
    } const settling{*this, _arguments.size(), _recentWrappers.size()};
    const id native = argumentToNative(element);
    const auto script = native.as<WebScriptObject>();
    if (!script) {
        visit(native);
        return;
    }
    struct Reading {
        ~Reading() { object._ahead = former; }
        WebScriptObject& object;
        WebScriptObjectValues* const former;
    } const reading{*script, std::exchange(script->_ahead, &ahead)};
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

// Scripts may have written the attributes of the wrapper: they are read back when it comes to native code.
void ScriptContext::refresh(NSObject& object, JSObjectRef script) {
    for (const auto& attribute : wrapperClassOf(object).attributes) {
        JSValueRef exception = nullptr;
        const JSValueRef value = JSObjectGetProperty(_context, script, attribute.scriptName, &exception);
        if (exception) {
            reportException(exception);
            continue;
        }
        if (!isUsable())
            return;
        const id number = toNative(value);
        object.setValueForKey(number.isNumber() || number.isString() ? number : id(0.0), attribute.key);
    }
}

std::shared_ptr<NSObject> ScriptContext::unwrap(JSObjectRef object) {
    if (!JSValueIsObjectOfClass(_context, object, wrapperBaseClass()))
        return nullptr;
    const auto native = *static_cast<WrapperData*>(JSObjectGetPrivate(object));
    refresh(*native, object);
    const auto isSame = [&](const Wrapper& wrapper) { return wrapper.object == native; };
    if (isUsable() && _callDepth > 0 && std::none_of(_keptWrappers.begin(), _keptWrappers.end(), isSame) &&
        std::none_of(_recentWrappers.begin(), _recentWrappers.end(), isSame))
        _recentWrappers.push_back({native, object, 0});
    return native;
}

JSValueRef ScriptContext::wrap(const std::shared_ptr<NSObject>& object) {
    for (const auto* wrappers : {&_recentWrappers, &_keptWrappers})
        for (const Wrapper& wrapper : *wrappers)
            if (wrapper.object == object)
                return wrapper.script;
    const WrapperClass& cls = wrapperClassOf(*object);
    JSObjectRef script = JSObjectMake(_context, cls.scriptClass, new WrapperData(object));
    for (const auto& attribute : cls.attributes)
        JSObjectSetProperty(_context, script, attribute.scriptName, toScript(object->valueForKey(attribute.key)),
                            kJSPropertyAttributeNone, nullptr);
    if (_callDepth > 0)
        _recentWrappers.push_back({object, script, 0});
    return script;
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
    if (const NSArray* elements = value.array()) {
        JSObjectRef array = JSObjectMakeArray(_context, 0, nullptr, nullptr);
        for (size_t i = 0; i < elements->size(); ++i)
            JSObjectSetPropertyAtIndex(_context, array, static_cast<unsigned>(i), toScript((*elements)[i]), nullptr);
        return array;
    }
    if (const auto script = value.as<WebScriptObject>()) {
        JSObjectRef object = script->scriptObject();
        return object ? static_cast<JSValueRef>(object) : JSValueMakeNull(_context);
    }
    return wrap(value.object());
}

} // namespace veyra
