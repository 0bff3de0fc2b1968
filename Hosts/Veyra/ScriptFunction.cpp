#include "Hosts/Veyra/ScriptFunction.h"

#include "Platform/WebKit/ScriptContext.h"

namespace veyra {

namespace {

JSValueRef callFunction(JSContextRef context, JSObjectRef function, JSObjectRef, size_t count,
                        const JSValueRef arguments[], JSValueRef* exception) {
    const auto& body = *static_cast<ScriptFunction*>(JSObjectGetPrivate(function));
    const JSValueRef result = body({arguments, count}, exception);
    return result ? result : JSValueMakeUndefined(context);
}

void finalizeFunction(JSObjectRef function) {
    delete static_cast<ScriptFunction*>(JSObjectGetPrivate(function));
}

JSClassRef functionClass() {
    static JSClassRef cls = [] {
        JSClassDefinition definition = kJSClassDefinitionEmpty;
        definition.className = "Function";
        definition.callAsFunction = callFunction;
        definition.finalize = finalizeFunction;
        return JSClassCreate(&definition);
    }();
    return cls;
}

class Name {
public:
    explicit Name(const char* text) : _string(JSStringCreateWithUTF8CString(text)) {}
    ~Name() { JSStringRelease(_string); }
    Name(const Name&) = delete;
    Name& operator=(const Name&) = delete;
    JSStringRef get() const { return _string; }

private:
    JSStringRef const _string;
};

JSObjectRef globalConstructor(JSContextRef context, const char* name) {
    return JSValueToObject(context, scriptProperty(context, JSContextGetGlobalObject(context), name), nullptr);
}

} // namespace

JSObjectRef makeScriptFunction(JSContextRef context, ScriptFunction body) {
    JSObjectRef function = JSObjectMake(context, functionClass(), new ScriptFunction(std::move(body)));
    // For `call`, `apply` and `bind`.
    JSObjectSetPrototype(context, function,
                         scriptProperty(context, globalConstructor(context, "Function"), "prototype"));
    return function;
}

void setScriptProperty(JSContextRef context, JSObjectRef object, const char* name, JSValueRef value) {
    JSObjectSetProperty(context, object, Name(name).get(), value, kJSPropertyAttributeNone, nullptr);
}

JSValueRef scriptProperty(JSContextRef context, JSObjectRef object, const char* name) {
    const JSValueRef value = JSObjectGetProperty(context, object, Name(name).get(), nullptr);
    return value ? value : JSValueMakeUndefined(context);
}

std::string scriptText(JSContextRef context, JSValueRef value, JSValueRef* exception) {
    JSStringRef string = JSValueToStringCopy(context, value, exception);
    if (!string)
        return "";
    const std::string text = ScriptContext::toString(string).utf8();
    JSStringRelease(string);
    return text;
}

JSValueRef makeTypeError(JSContextRef context, const std::string& message) {
    const JSValueRef text = JSValueMakeString(context, Name(message.c_str()).get());
    return JSObjectCallAsConstructor(context, globalConstructor(context, "TypeError"), 1, &text, nullptr);
}

} // namespace veyra
