// A web extension with the floor of a property read: a native accessor on <object> that does nothing, "bareAccessor".
#include <JavaScriptCore/JavaScript.h>
#include <webkit2/webkit-web-extension.h>

namespace {

JSValueRef getNothing(JSContextRef context, JSObjectRef, JSObjectRef, size_t, const JSValueRef[], JSValueRef*) {
    return JSValueMakeBoolean(context, true);
}

JSValueRef makeGetter(JSContextRef context, JSObjectRef, JSObjectRef, size_t, const JSValueRef[], JSValueRef*) {
    return JSObjectMakeFunctionWithCallback(context, nullptr, getNothing);
}

void windowObjectCleared(WebKitScriptWorld* world, WebKitWebPage*, WebKitFrame* frame, gpointer) {
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    JSGlobalContextRef context = webkit_frame_get_javascript_context_for_script_world(frame, world);
    G_GNUC_END_IGNORE_DEPRECATIONS
    JSObjectRef make = JSObjectMakeFunctionWithCallback(context, nullptr, makeGetter);
    JSStringRef define = JSStringCreateWithUTF8CString(
        "(function (make) { Object.defineProperty(HTMLObjectElement.prototype, 'bareAccessor', { get: make() }) })");
    const JSValueRef function = JSEvaluateScript(context, define, nullptr, nullptr, 1, nullptr);
    JSStringRelease(define);
    const JSValueRef argument = make;
    JSObjectCallAsFunction(context, JSValueToObject(context, function, nullptr), nullptr, 1, &argument, nullptr);
}

} // namespace

extern "C" __attribute__((visibility("default"))) void webkit_web_extension_initialize(WebKitWebExtension*) {
    g_signal_connect(webkit_script_world_get_default(), "window-object-cleared", G_CALLBACK(windowObjectCleared),
                     nullptr);
}
