#include "Platform/WebKit/WebScriptObject.h"

#include "Platform/Foundation/NSLog.h"
#include "Platform/WebKit/ScriptCall.h"

namespace veyra {

Class WebScriptObject::classObject() {
    static Class cls = new ClassObject("WebScriptObject", NSObject::classObject(), {});
    return cls;
}

WebScriptObject::~WebScriptObject() {
    if (_slot)
        _context->releaseSlot(*_slot);
}

JSObjectRef WebScriptObject::scriptObject() const {
    return _context->isUsable() ? _object : nullptr;
}

void WebScriptObject::report(JSValueRef exception) const {
    _context->reportException(exception);
}

id WebScriptObject::valueForKey(const NSString& key) {
    if (_object ? !_context->isUsable() : !_readAhead)
        return id();
    JSValueRef exception = nullptr;
    JSValueRef value = nullptr;
    std::shared_ptr<NSObject> self;
    ScriptValuesAhead::Kind kind{};
    double number = 0;
    if (_readAhead && _readAhead->next(key, kind, number, value)) {
        if (kind == ScriptValuesAhead::Kind::Number)
            return id(number);
        if (kind == ScriptValuesAhead::Kind::Boolean)
            return id(number != 0);
        if (kind == ScriptValuesAhead::Kind::Nil)
            return id();
        if (kind == ScriptValuesAhead::Kind::Nothing)
            return valueForUndefinedKey(key);
        if (kind == ScriptValuesAhead::Kind::Text)
            return _readAhead->text(value, number);
        if (kind == ScriptValuesAhead::Kind::Exception)
            exception = value;
    } else {
        if (!_object)
            return id();
        self = shared_from_this(); // a getter may drop what holds this object
        value = JSObjectGetProperty(_context->_context, _object, ScriptContext::keyString(key), &exception);
    }
    if (exception) {
        report(exception);
        return valueForUndefinedKey(key);
    }
    if (!scriptObject())
        return id();
    const id converted = _context->toNative(value);
    return converted.isUndefined() ? valueForUndefinedKey(key) : converted;
}

id WebScriptObject::webScriptValueAtIndex(unsigned index) {
    if (!scriptObject())
        return id();
    const auto self = shared_from_this();
    JSValueRef exception = nullptr;
    const JSValueRef value = JSObjectGetPropertyAtIndex(_context->_context, _object, index, &exception);
    if (exception) {
        report(exception);
        return id(WebUndefined{});
    }
    return _context->toNative(value);
}

id WebScriptObject::callWebScriptMethod(const NSString& name, const NSArray& arguments) {
    if (!scriptObject())
        return id();
    const auto self = shared_from_this();
    const JSContextRef context = _context->_context;
    // Settles at its end what the call wraps.
    const ScriptCall call(*_context);

    JSValueRef exception = nullptr;
    const JSValueRef function = JSObjectGetProperty(context, _object, ScriptContext::keyString(name), &exception);
    if (exception) {
        report(exception);
        return id();
    }
    if (!scriptObject() || !JSValueIsObject(context, function))
        return id();
    JSObjectRef callable = JSValueToObject(context, function, nullptr);
    if (!JSObjectIsFunction(context, callable))
        return id();

    // The script array keeps the converted arguments alive: the vector's memory is invisible to the collector.
    const JSValueRef array = _context->toScript(id(arguments));
    std::vector<JSValueRef> values;
    values.reserve(arguments.size());
    for (size_t i = 0; i < arguments.size(); ++i)
        values.push_back(
            JSObjectGetPropertyAtIndex(context, const_cast<JSObjectRef>(array), static_cast<unsigned>(i), nullptr));
    const JSValueRef result =
        JSObjectCallAsFunction(context, callable, _object, values.size(), values.data(), &exception);
    if (exception) {
        report(exception);
        return id();
    }
    if (!scriptObject())
        return id();
    const id converted = _context->toNative(result);
    return converted.isUndefined() ? id() : converted;
}

void WebScriptObject::throwException(const NSString& message) {
    if (ScriptCall* call = ScriptCall::current())
        call->setPendingException(message);
    else
        NSLog("Script exception outside of a call: %@", {message});
}

bool WebScriptObject::isEqual(const NSObject& other) const {
    const auto* script = dynamic_cast<const WebScriptObject*>(&other);
    return script && script->_context == _context && script->_object == _object;
}

size_t WebScriptObject::hash() const {
    return std::hash<const void*>()(_object);
}

} // namespace veyra
