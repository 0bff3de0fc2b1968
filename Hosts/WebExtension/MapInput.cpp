#include "Hosts/WebExtension/MapInput.h"

#include "Hosts/WebExtension/MapElement.h"
#include "Hosts/WebExtension/ScriptSupport.h"
#include "Platform/Foundation/DispatchQueue.h"

#include <span>

namespace veyra {

namespace {

/// The arguments of a call from our own script: the handle of a map, then plain values.
struct InputCall {
    JSContextRef context;
    std::span<const JSValueRef> values;
    std::shared_ptr<MapElement> map;

    InputCall(JSContextRef script, size_t count, const JSValueRef arguments[])
        : context(script), values(arguments, count),
          map(MapElement::fromHandle(script, count ? arguments[0] : nullptr)) {}
    double number(size_t i) const { return i < values.size() ? numberOf(context, values[i]) : 0; }
    bool flag(size_t i) const { return i < values.size() && JSValueToBoolean(context, values[i]); }
    std::string text(size_t i) const { return i < values.size() ? textOf(context, values[i]) : std::string(); }
    /// The time of an event that is as old as argument `i` says, in milliseconds.
    double timestamp(size_t i) const {
        return static_cast<double>(g_get_monotonic_time()) / G_USEC_PER_SEC - number(i) / 1000;
    }
    void send(UIEvent event) const {
        dispatch_async(dispatch_get_main_queue(),
                       [window = map->window(), event = std::move(event)] { window->sendEvent(event); });
    }
};

// inputPolicy(handle): the bits of UIInputPolicy, which SurfaceInput.js names.
JSValueRef inputPolicy(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                       JSValueRef*) {
    const InputCall call(context, count, arguments);
    if (!call.map)
        return JSValueMakeNumber(context, 0);
    return JSValueMakeNumber(context, call.map->window()->inputPolicy().bits());
}

// touch(handle, identifier, type, phase, x, y, age)
JSValueRef touch(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                 JSValueRef*) {
    const InputCall call(context, count, arguments);
    if (call.map)
        call.send(UITouchEvent{static_cast<int64_t>(call.number(1)),
                               static_cast<UITouchType>(call.number(2)),
                               static_cast<UITouchPhase>(call.number(3)),
                               {call.number(4), call.number(5)},
                               call.timestamp(6)});
    return JSValueMakeUndefined(context);
}

// scroll(handle, x, y, deltaX, deltaY, pinches, age)
JSValueRef scroll(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                  JSValueRef*) {
    const InputCall call(context, count, arguments);
    if (call.map)
        call.send(UIScrollEvent{
            {call.number(1), call.number(2)}, call.number(3), call.number(4), call.flag(5), call.timestamp(6)});
    return JSValueMakeUndefined(context);
}

// key(handle, key, shift, control, alternate, meta, age)
JSValueRef key(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
               JSValueRef*) {
    const InputCall call(context, count, arguments);
    if (call.map)
        call.send(UIKeyEvent{call.text(1), call.flag(2), call.flag(3), call.flag(4), call.flag(5), call.timestamp(6)});
    return JSValueMakeUndefined(context);
}

// focus(handle, hasFocus)
JSValueRef focus(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                 JSValueRef*) {
    const InputCall call(context, count, arguments);
    if (call.map)
        call.send(UIFocusEvent{call.flag(1)});
    return JSValueMakeUndefined(context);
}

// act(handle, action): an action of UIAccessibilityAction.
JSValueRef act(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
               JSValueRef*) {
    const InputCall call(context, count, arguments);
    if (call.map)
        call.send(UIAccessibilityEvent{static_cast<UIAccessibilityAction>(call.number(1))});
    return JSValueMakeUndefined(context);
}

} // namespace

void defineInputFunctions(JSContextRef context, JSObjectRef host) {
    defineFunction(context, host, "inputPolicy", inputPolicy);
    defineFunction(context, host, "touch", touch);
    defineFunction(context, host, "scroll", scroll);
    defineFunction(context, host, "key", key);
    defineFunction(context, host, "focus", focus);
    defineFunction(context, host, "act", act);
}

} // namespace veyra
