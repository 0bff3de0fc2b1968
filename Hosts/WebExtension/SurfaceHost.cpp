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

// animationFrame(handle): what MapSurface.put takes, or undefined when there is nothing to put. When it has been put,
// framePut follows.
JSValueRef animationFrame(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                          JSValueRef*) {
    const auto map = MapElement::fromHandle(context, count ? arguments[0] : nullptr);
    const auto* const picture = map ? map->presenter().animationFrame() : nullptr;
    if (!picture)
        return JSValueMakeUndefined(context);
    std::vector<JSValueRef> values; // numbers, which no collector takes
    const auto add = [&](double number) { values.push_back(JSValueMakeNumber(context, number)); };
    add(picture->store->bounds().width);
    add(picture->store->bounds().height);
    add(picture->store->scale());
    for (const PixelRect& rect : picture->changes) {
        for (const int number : {rect.x, rect.y, rect.width, rect.height})
            add(number);
    }
    return JSObjectMakeArray(context, values.size(), values.data(), nullptr);
}

// copyPixels(handle, data, imageWidth, x, y, width, height): a part of the picture that is being put comes to the left
// top of an image's data, which is large enough.
JSValueRef copyPixels(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                      JSValueRef*) {
    const auto map = MapElement::fromHandle(context, count ? arguments[0] : nullptr);
    const auto* const picture = map && count >= 7 ? map->presenter().picture() : nullptr;
    if (picture) {
        JSObjectRef data = JSValueToObject(context, arguments[1], nullptr);
        const auto number = [&](size_t i) { return static_cast<int>(numberOf(context, arguments[i])); };
        if (void* const bytes = data ? JSObjectGetTypedArrayBytesPtr(context, data, nullptr) : nullptr)
            picture->store->copyPixels({number(3), number(4), number(5), number(6)}, static_cast<uint8_t*>(bytes),
                                       static_cast<size_t>(number(2)) * 4);
    }
    return JSValueMakeUndefined(context);
}

// framePut(handle)
JSValueRef framePut(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                    JSValueRef*) {
    if (const auto map = MapElement::fromHandle(context, count ? arguments[0] : nullptr))
        map->presenter().framePut();
    return JSValueMakeUndefined(context);
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
    defineFunction(context, host, "copyPixels", copyPixels);
    defineFunction(context, host, "framePut", framePut);
    defineFunction(context, host, "located", located);
    defineFunction(context, host, "notLocated", notLocated);
    defineFunction(context, host, "pageHidden", pageHidden);
    defineFunction(context, host, "pageShown", pageShown);
    defineFunction(context, host, "progress", progress);
    defineInputFunctions(context, host);
    return host;
}

} // namespace veyra
