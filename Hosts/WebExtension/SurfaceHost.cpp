#include "Hosts/WebExtension/SurfaceHost.h"

#include "Hosts/WebExtension/MapInput.h"
#include "Hosts/WebExtension/PageFrame.h"
#include "Hosts/WebExtension/PageMessages.h"
#include "Hosts/WebExtension/ScriptSupport.h"
#include "Platform/WebKit/WebThread.h"

namespace veyra {

namespace {

using HostData = std::weak_ptr<PageFrame>;

// The collector calls this: it touches nothing of the engine.
void hostFinalized(JSObjectRef host) {
    const std::unique_ptr<HostData> frame(static_cast<HostData*>(JSObjectGetPrivate(host)));
    webThread().async([weak = *frame] {
        if (const auto gone = weak.lock())
            gone->close();
    });
}

JSClassRef hostClass() {
    static JSClassRef cls = [] {
        JSClassDefinition definition = kJSClassDefinitionEmpty;
        definition.className = "VeyraSurfaceHost";
        definition.attributes = kJSClassAttributeNoAutomaticPrototype;
        definition.finalize = hostFinalized;
        return JSClassCreate(&definition);
    }();
    return cls;
}

std::shared_ptr<PageFrame> frameOf(JSObjectRef host) {
    return static_cast<HostData*>(JSObjectGetPrivate(host))->lock();
}

// start(surface, [name, value, …], baseURL, scale): the map's handle, or null.
JSValueRef start(JSContextRef context, JSObjectRef, JSObjectRef host, size_t count, const JSValueRef arguments[],
                 JSValueRef*) {
    const auto frame = frameOf(host);
    if (!frame || count < 4)
        return JSValueMakeNull(context);
    PlugInElement element;
    JSObjectRef list = JSValueToObject(context, arguments[1], nullptr);
    JSStringRef lengthName = JSStringCreateWithUTF8CString("length");
    const auto length =
        static_cast<unsigned>(numberOf(context, JSObjectGetProperty(context, list, lengthName, nullptr)));
    JSStringRelease(lengthName);
    const auto text = [&](unsigned i) {
        return textOf(context, JSObjectGetPropertyAtIndex(context, list, i, nullptr));
    };
    for (unsigned i = 0; i + 1 < length; i += 2)
        element.attributes[text(i)] = text(i + 1);
    element.baseURL = textOf(context, arguments[2]);
    element.screenScale = numberOf(context, arguments[3]);
    const auto map = frame->startMap(std::move(element), JSValueToObject(context, arguments[0], nullptr));
    return map ? map->makeHandle() : JSValueMakeNull(context);
}

// stop(handle)
JSValueRef stop(JSContextRef context, JSObjectRef, JSObjectRef host, size_t count, const JSValueRef arguments[],
                JSValueRef*) {
    const auto frame = frameOf(host);
    const auto map = MapElement::fromHandle(context, count ? arguments[0] : nullptr);
    if (frame && map)
        frame->stopMap(map);
    return JSValueMakeUndefined(context);
}

// layOut(handle, width, height, scale, visible, dark)
JSValueRef layOut(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                  JSValueRef*) {
    const auto map = MapElement::fromHandle(context, count ? arguments[0] : nullptr);
    if (map && count >= 6)
        map->presenter().layOut({numberOf(context, arguments[1]), numberOf(context, arguments[2])},
                                numberOf(context, arguments[3]), JSValueToBoolean(context, arguments[4]),
                                JSValueToBoolean(context, arguments[5]) ? UIUserInterfaceStyleDark
                                                                        : UIUserInterfaceStyleLight);
    return JSValueMakeUndefined(context);
}

// animationFrame(handle): what MapSurface.put takes, or undefined when there is nothing to put.
JSValueRef animationFrame(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                          JSValueRef*) {
    const auto map = MapElement::fromHandle(context, count ? arguments[0] : nullptr);
    const auto put = map ? map->presenter().animationFrame() : std::vector<int>();
    if (put.empty())
        return JSValueMakeUndefined(context);
    std::vector<JSValueRef> values;
    for (const int number : put)
        values.push_back(JSValueMakeNumber(context, number));
    return JSObjectMakeArray(context, values.size(), values.data(), nullptr);
}

// located(handle, latitude, longitude, accuracy, altitude, altitudeAccuracy)
JSValueRef located(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                   JSValueRef*) {
    const auto map = MapElement::fromHandle(context, count ? arguments[0] : nullptr);
    if (map && count >= 6) {
        const auto number = [&](size_t i) { return numberOf(context, arguments[i]); };
        map->location().located(std::make_shared<CLLocation>(CLLocationCoordinate2DMake(number(1), number(2)),
                                                             number(4), number(3), number(5)));
    }
    return JSValueMakeUndefined(context);
}

// notLocated(handle, code, message)
JSValueRef notLocated(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                      JSValueRef*) {
    const auto map = MapElement::fromHandle(context, count ? arguments[0] : nullptr);
    if (map && count >= 3)
        map->location().notLocated(static_cast<int>(numberOf(context, arguments[1])), textOf(context, arguments[2]));
    return JSValueMakeUndefined(context);
}

// pageHidden(persisted)
JSValueRef pageHidden(JSContextRef context, JSObjectRef, JSObjectRef host, size_t count, const JSValueRef arguments[],
                      JSValueRef*) {
    if (const auto frame = frameOf(host))
        frame->pageHidden(count && JSValueToBoolean(context, arguments[0]));
    return JSValueMakeUndefined(context);
}

JSValueRef pageShown(JSContextRef context, JSObjectRef, JSObjectRef host, size_t, const JSValueRef[], JSValueRef*) {
    if (const auto frame = frameOf(host))
        frame->pageShown();
    return JSValueMakeUndefined(context);
}

// progress(): the page may have come to rest. Serves as an event listener too.
JSValueRef progress(JSContextRef context, JSObjectRef, JSObjectRef, size_t, const JSValueRef[], JSValueRef*) {
    answerWaitingMessages();
    return JSValueMakeUndefined(context);
}

} // namespace

JSObjectRef makeSurfaceHost(JSContextRef context, const std::shared_ptr<PageFrame>& frame) {
    JSObjectRef host = JSObjectMake(context, hostClass(), new HostData(frame));
    defineFunction(context, host, "start", start);
    defineFunction(context, host, "stop", stop);
    defineFunction(context, host, "layOut", layOut);
    defineFunction(context, host, "animationFrame", animationFrame);
    defineFunction(context, host, "located", located);
    defineFunction(context, host, "notLocated", notLocated);
    defineFunction(context, host, "pageHidden", pageHidden);
    defineFunction(context, host, "pageShown", pageShown);
    defineFunction(context, host, "progress", progress);
    defineInputFunctions(context, host);
    return host;
}

} // namespace veyra
