#include "Hosts/WebExtension/MapElement.h"

#include "Hosts/WebExtension/PageMessages.h"
#include "Platform/WebKit/WebScriptExposure.h"

namespace veyra {

namespace {

std::unordered_map<JSObjectRef, MapElement*>& wrappers() {
    static auto* table = new std::unordered_map<JSObjectRef, MapElement*>;
    return *table;
}

// The map of the last look-up: calls come in runs on one map. Null when that wrapper has been forgotten.
MapElement* lastFound = nullptr;

using HandleData = std::weak_ptr<MapElement>;

// The collector calls this: it touches nothing of the engine.
void handleFinalized(JSObjectRef handle) {
    delete static_cast<HandleData*>(JSObjectGetPrivate(handle));
}

JSClassRef handleClass() {
    static JSClassRef cls = [] {
        JSClassDefinition definition = kJSClassDefinitionEmpty;
        definition.className = "VeyraMapHandle";
        definition.attributes = kJSClassAttributeNoAutomaticPrototype;
        definition.finalize = handleFinalized;
        return JSClassCreate(&definition);
    }();
    return cls;
}

} // namespace

std::shared_ptr<MapElement> MapElement::start(PlugInElement element, JSGlobalContextRef context, JSObjectRef surface) {
    const auto location = std::make_shared<MapLocation>();
    element.locationProvider = location;
    auto instance = PlugInInstance::create(element);
    if (!instance)
        return nullptr;
    std::shared_ptr<MapElement> map(new MapElement(std::move(instance), location));
    location->setMap(map);
    map->_presenter =
        std::make_shared<FramePresenter>(map->window(), context, surface, [] { answerWaitingMessages(); });
    map->_presenter->start();
    return map;
}

MapElement::~MapElement() {
    stop();
}

void MapElement::stop() {
    if (_wrapper && view())
        objectLeaves(_wrapper, view());
    forgetWrapper();
    _presenter->stop();
    _instance->stop();
    answerWaitingMessages();
}

JSObjectRef MapElement::makeHandle() {
    return JSObjectMake(_presenter->surface().context(), handleClass(), new HandleData(weak_from_this()));
}

std::shared_ptr<MapElement> MapElement::fromHandle(JSContextRef context, JSValueRef handle) {
    if (!handle || !JSValueIsObjectOfClass(context, handle, handleClass()))
        return nullptr;
    const auto map = static_cast<HandleData*>(JSObjectGetPrivate(JSValueToObject(context, handle, nullptr)))->lock();
    return map && map->view() ? map : nullptr;
}

MapElement* MapElement::behindWrapper(JSObjectRef wrapper) {
    if (lastFound && lastFound->_wrapper == wrapper)
        return lastFound;
    const auto found = wrappers().find(wrapper);
    if (found == wrappers().end())
        return nullptr;
    return lastFound = found->second;
}

void MapElement::setWrapper(JSObjectRef wrapper) {
    if (_isPageHidden)
        return;
    forgetWrapper();
    _presenter->surface().keepAlive(wrapper);
    _wrapper = wrapper;
    wrappers()[wrapper] = this;
}

void MapElement::pageHidden() {
    _isPageHidden = true;
    forgetWrapper();
    _presenter->suspend();
}

void MapElement::pageShown() {
    _isPageHidden = false;
    _presenter->resume();
    _location->pageShown();
}

void MapElement::forgetWrapper() {
    if (lastFound == this)
        lastFound = nullptr;
    if (_wrapper)
        wrappers().erase(_wrapper);
    _wrapper = nullptr;
}

} // namespace veyra
