#include "Hosts/WebExtension/ScriptSupport.h"

#include "Platform/Foundation/NSLog.h"
#include "Platform/WebKit/ScriptContext.h"

#include <cmath>

namespace veyra {

namespace {

class ScriptName {
public:
    explicit ScriptName(const char* utf8) : _string(JSStringCreateWithUTF8CString(utf8)) {}
    ~ScriptName() { JSStringRelease(_string); }
    ScriptName(const ScriptName&) = delete;
    ScriptName& operator=(const ScriptName&) = delete;
    operator JSStringRef() const { return _string; }

private:
    JSStringRef const _string;
};

void logException(JSContextRef context, JSValueRef exception) {
    NSLog("A script of the map host failed: %@", {NSString(textOf(context, exception).c_str())});
}

} // namespace

JSObjectRef evaluateScript(JSContextRef context, const char* source, const char* name) {
    JSValueRef exception = nullptr;
    const JSValueRef result = JSEvaluateScript(context, ScriptName(source), nullptr, ScriptName(name), 1, &exception);
    if (exception)
        logException(context, exception);
    return result && JSValueIsObject(context, result) ? JSValueToObject(context, result, nullptr) : nullptr;
}

JSValueRef callFunction(JSContextRef context, JSObjectRef function, std::initializer_list<JSValueRef> arguments) {
    if (!function)
        return nullptr;
    JSValueRef exception = nullptr;
    const JSValueRef result =
        JSObjectCallAsFunction(context, function, nullptr, arguments.size(), arguments.begin(), &exception);
    if (exception)
        logException(context, exception);
    return exception ? nullptr : result;
}

JSValueRef callMethod(JSContextRef context, JSObjectRef object, const char* name,
                      std::initializer_list<JSValueRef> arguments) {
    JSObjectRef function = objectProperty(context, object, name);
    if (!function)
        return nullptr;
    JSValueRef exception = nullptr;
    const JSValueRef result =
        JSObjectCallAsFunction(context, function, object, arguments.size(), arguments.begin(), &exception);
    if (exception)
        logException(context, exception);
    return exception ? nullptr : result;
}

JSObjectRef objectProperty(JSContextRef context, JSObjectRef object, const char* name) {
    const JSValueRef value = JSObjectGetProperty(context, object, ScriptName(name), nullptr);
    return value && JSValueIsObject(context, value) ? JSValueToObject(context, value, nullptr) : nullptr;
}

void setProperty(JSContextRef context, JSObjectRef object, const char* name, JSValueRef value) {
    JSObjectSetProperty(context, object, ScriptName(name), value, kJSPropertyAttributeDontEnum, nullptr);
}

void defineFunction(JSContextRef context, JSObjectRef object, const char* name,
                    JSObjectCallAsFunctionCallback function) {
    const ScriptName text(name);
    JSObjectSetProperty(context, object, text, JSObjectMakeFunctionWithCallback(context, text, function),
                        kJSPropertyAttributeNone, nullptr);
}

std::string textOf(JSContextRef context, JSValueRef value) {
    JSStringRef string = JSValueToStringCopy(context, value, nullptr);
    if (!string)
        return {};
    std::string text = ScriptContext::toString(string).utf8();
    JSStringRelease(string);
    return text;
}

double numberOf(JSContextRef context, JSValueRef value) {
    const double number = JSValueToNumber(context, value, nullptr);
    return std::isfinite(number) ? number : 0;
}

} // namespace veyra
