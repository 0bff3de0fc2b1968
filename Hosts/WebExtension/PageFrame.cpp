#include "Hosts/WebExtension/PageFrame.h"

#include "Hosts/Common/HostConfiguration.h"
#include "Hosts/Common/TileSources.h"
#include "Hosts/WebExtension/EmbeddedScripts.h"
#include "Hosts/WebExtension/PageMessages.h"
#include "Hosts/WebExtension/PageUIDelegate.h"
#include "Hosts/WebExtension/Queues.h"
#include "Hosts/WebExtension/ScriptSupport.h"
#include "Hosts/WebExtension/Statistics.h"
#include "Hosts/WebExtension/SurfaceHost.h"
#include "Platform/WebKit/WebScriptExposure.h"
#include "Platform/WebKit/WebThread.h"

#include <utility>

namespace veyra {

namespace {

std::vector<std::shared_ptr<PageFrame>>& allFrames() {
    static auto* frames = new std::vector<std::shared_ptr<PageFrame>>;
    return *frames;
}

WebKitScriptWorld* isolatedWorld() {
    static WebKitScriptWorld* world = webkit_script_world_new_with_name("veyra");
    return world;
}

// What the first map of the process needs.
void prepareForMaps() {
    [[maybe_unused]] static const bool isPrepared = [] {
        startMainQueue();
        HostConfiguration configuration;
        const char* verbose = g_getenv("VEYRA_VERBOSE");
        configuration.verboseDebugLogging = verbose && std::string_view(verbose) == "1";
        configuration.tileSource = tileSourceOfEnvironment();
        configureCreatedViews(configuration);
        countViews();
        return true;
    }();
}

} // namespace

PageFrame::PageFrame(WebKitWebPage* page, WebKitFrame* frame)
    : _page(page), _frame(frame), _pageContext(frameGlobalContext(frame, webkit_script_world_get_default())),
      _isolatedContext(frameGlobalContext(frame, isolatedWorld())) {
    g_object_weak_ref(G_OBJECT(frame), frameFinalized, this);
}

PageFrame::~PageFrame() {
    if (_frame)
        g_object_weak_unref(G_OBJECT(_frame), frameFinalized, this);
}

void PageFrame::windowObjectCleared(WebKitWebPage* page, WebKitFrame* frame) {
    JSGlobalContextRef context = frameGlobalContext(frame, webkit_script_world_get_default());
    const auto frames = allFrames();
    for (const auto& known : frames) {
        // The first document of a window may give the window to the next one.
        if (known->_frame == frame && known->_pageContext == context && !known->_isHidden) {
            callMethod(known->_isolatedContext, known->_surfaces, "documentChanged", {});
            return;
        }
        // Whatever else had that context has been collected; whatever was shown in that frame left without a word.
        if (known->_pageContext == context || (known->_frame == frame && !known->_isHidden))
            known->close();
    }
    const std::shared_ptr<PageFrame> made(new PageFrame(page, frame));
    allFrames().push_back(made);
    // It fails where a script that has used up its stack makes a frame: that one has no maps.
    if (!made->installSurfaces() || !made->installNames())
        made->close();
}

bool PageFrame::installSurfaces() {
    JSObjectRef global = JSContextGetGlobalObject(_isolatedContext);
    JSObjectRef host = makeSurfaceHost(_isolatedContext, shared_from_this());
    JSObjectRef input = evaluateScript(_isolatedContext, scriptSurfaceInput, "SurfaceInput.js");
    JSObjectRef surface = evaluateScript(_isolatedContext, scriptSurface, "Surface.js");
    const JSValueRef attach = callFunction(_isolatedContext, input, {host});
    const JSValueRef surfaces = attach ? callFunction(_isolatedContext, surface, {host, attach}) : nullptr;
    if (!surfaces)
        return false;
    _surfaces = JSValueToObject(_isolatedContext, surfaces, nullptr);
    setProperty(_isolatedContext, global, "veyraSurfaces", _surfaces);
    // An earlier page may have had a context at this address.
    if (const auto stale = ScriptContext::existing(_pageContext))
        stale->invalidate();
    _scriptContext = ScriptContext::of(_pageContext, global);
    _webFrame = std::make_shared<WebFrame>(
        _scriptContext, std::make_shared<WebView>(std::make_shared<PageUIDelegate>(weak_from_this())));
    return true;
}

bool PageFrame::installNames() {
    JSStringRef name = JSStringCreateWithUTF8CString("disconnected");
    JSObjectRef disconnected = JSObjectMakeFunctionWithCallback(_pageContext, name, surfaceDisconnected);
    JSStringRelease(name);
    JSObjectRef element = evaluateScript(_pageContext, scriptSurfaceElement, "SurfaceElement.js");
    if (!callFunction(_pageContext, element, {disconnected}))
        return false;
    JSObjectRef constructor = objectProperty(_pageContext, JSContextGetGlobalObject(_pageContext), "HTMLObjectElement");
    exposeClass(*_scriptContext, objectProperty(_pageContext, constructor, "prototype"), VeyraView::classObject(),
                VeyraView::scriptingKeys(), resolve);
    return true;
}

std::shared_ptr<PageFrame> PageFrame::ofContext(JSContextRef context) {
    JSGlobalContextRef global = JSContextGetGlobalContext(context);
    for (const auto& frame : allFrames()) {
        if (frame->_pageContext == global)
            return frame;
    }
    return nullptr;
}

SelfSharingObject* PageFrame::resolve(JSContextRef context, JSObjectRef thisObject) {
    if (const MapElement* map = MapElement::behindWrapper(thisObject))
        return map->view().get();
    const auto frame = ofContext(context);
    const auto map = frame && thisObject ? frame->find(thisObject) : nullptr;
    return map ? map->view().get() : nullptr; // its frame keeps it
}

// The element's own frame makes the map, which need not be this one: an element keeps the prototype of the document
// that it was made in.
std::shared_ptr<MapElement> PageFrame::find(JSObjectRef element) {
    JSObjectRef node = isolatedNode(element);
    if (!node)
        return nullptr;
    auto map = MapElement::fromHandle(_isolatedContext, callMethod(_isolatedContext, _surfaces, "find", {node}));
    if (map)
        map->setWrapper(element);
    return map;
}

JSObjectRef PageFrame::isolatedNode(JSObjectRef node) const {
    // A frame that shows another document by now has other contexts.
    if (!_frame || frameGlobalContext(_frame, isolatedWorld()) != _isolatedContext)
        return nullptr;
    return nodeInWorld(_frame, isolatedWorld(), node);
}

JSValueRef PageFrame::surfaceDisconnected(JSContextRef context, JSObjectRef, JSObjectRef surface, size_t,
                                          const JSValueRef[], JSValueRef*) {
    if (const auto frame = ofContext(context)) {
        if (JSObjectRef node = frame->isolatedNode(surface))
            callMethod(frame->_isolatedContext, frame->_surfaces, "disconnected", {node});
    }
    return JSValueMakeUndefined(context);
}

void PageFrame::frameFinalized(gpointer self, GObject*) {
    static_cast<PageFrame*>(self)->_frame = nullptr;
    static_cast<PageFrame*>(self)->close();
}

std::shared_ptr<MapElement> PageFrame::startMap(PlugInElement element, JSObjectRef surface) {
    if (_isClosed)
        return nullptr;
    prepareForMaps();
    element.frame = _webFrame;
    auto map = MapElement::start(std::move(element), _isolatedContext, surface);
    if (map)
        _maps.push_back(map);
    return map;
}

void PageFrame::stopMap(const std::shared_ptr<MapElement>& map) {
    map->stop();
    std::erase(_maps, map);
}

// The page's own handlers for leaving still run, and may use the map.
void PageFrame::pageHidden(bool isPersisted) {
    _isHidden = true;
    for (const auto& map : _maps)
        map->pageHidden();
    webThread().async([self = shared_from_this(), isPersisted] {
        if (!self->_isHidden || self->_isClosed)
            return;
        if (isPersisted)
            self->_scriptContext->setSuspended(true);
        else
            self->close();
    });
}

void PageFrame::pageShown() {
    _isHidden = false;
    _scriptContext->setSuspended(false);
    for (const auto& map : _maps)
        map->pageShown();
}

void PageFrame::close() {
    if (std::exchange(_isClosed, true))
        return;
    const auto self = shared_from_this();
    std::erase(allFrames(), self);
    for (const auto& map : std::exchange(_maps, {}))
        map->stop();
    _webFrame = nullptr;
    if (_scriptContext)
        _scriptContext->invalidate();
    answerWaitingMessages();
}

bool PageFrame::isSettled() {
    const JSValueRef settled = callMethod(_isolatedContext, _surfaces, "isSettled", {});
    return !settled || JSValueToBoolean(_isolatedContext, settled);
}

std::vector<std::shared_ptr<PageFrame>> PageFrame::shownFrames(WebKitWebPage* page) {
    auto frames = allFrames();
    std::erase_if(frames, [page](const auto& frame) { return frame->_page != page || frame->_isHidden; });
    return frames;
}

JSGlobalContextRef PageFrame::anyContext() {
    return allFrames().empty() ? nullptr : allFrames().back()->_pageContext;
}

} // namespace veyra
