#include "Hosts/WebExtension/FrameDom.h"

#include "Hosts/WebExtension/ScriptSupport.h"

namespace veyra {

namespace {

// A property of the isolated global object through which values change from the engine's C interface to its GLib
// interface and back: neither has a function for that.
constexpr const char* crossing = "veyraCrossing";

} // namespace

JSGlobalContextRef frameGlobalContext(WebKitFrame* frame, WebKitScriptWorld* world) {
    return webkit_frame_get_javascript_context_for_script_world(frame, world);
}

JSObjectRef nodeInWorld(WebKitFrame* frame, WebKitScriptWorld* world, JSObjectRef node) {
    JSGlobalContextRef context = frameGlobalContext(frame, world);
    JSObjectRef global = JSContextGetGlobalObject(context);
    JSCContext* scripts = webkit_frame_get_js_context_for_script_world(frame, world);

    setProperty(context, global, crossing, node);
    JSCValue* foreign = jsc_context_get_value(scripts, crossing);
    JSObjectRef result = nullptr;
    if (WebKitDOMNode* domNode = webkit_dom_node_for_js_value(foreign)) {
        JSCValue* own =
            webkit_frame_get_js_value_for_dom_object_in_script_world(frame, WEBKIT_DOM_OBJECT(domNode), world);
        jsc_context_set_value(scripts, crossing, own);
        result = objectProperty(context, global, crossing);
        g_object_unref(own);
    }
    setProperty(context, global, crossing, JSValueMakeUndefined(context));
    g_object_unref(foreign);
    g_object_unref(scripts);
    return result;
}

} // namespace veyra
