// One document of a page or frame, from the moment its script context exists until it has gone for good: puts the
// script names on its <object> elements, runs Surface.js beside it in an isolated script world, and owns its maps.
//
// Web thread only. Alive while its page is shown or in the back/forward cache. A page in that cache may be collected
// without a word, and one protected value would prevent that: nothing of its context is called or protected then, and
// the collection of the surface host closes the frame.
#pragma once

#include "Hosts/WebExtension/FrameDom.h"
#include "Hosts/WebExtension/MapElement.h"

#include <vector>

namespace veyra {

class PageFrame : public std::enable_shared_from_this<PageFrame> {
public:
    /// The frame has a new global object, or an old one that has got a new document.
    static void windowObjectCleared(WebKitWebPage* page, WebKitFrame* frame);
    /// The frames of the page that are shown.
    static std::vector<std::shared_ptr<PageFrame>> shownFrames(WebKitWebPage* page);
    /// A script context that a frame of the page runs in; null when there is none.
    static JSGlobalContextRef anyContext();

    ~PageFrame();

    std::shared_ptr<MapElement> startMap(PlugInElement element, JSObjectRef surface);
    void stopMap(const std::shared_ptr<MapElement>& map);
    const std::vector<std::shared_ptr<MapElement>>& maps() const { return _maps; }

    /// The page leaves: for the back/forward cache when `isPersisted`, else for good, once its scripts have run.
    void pageHidden(bool isPersisted);
    void pageShown();
    /// Stops all maps and declares the script context dead. Further calls do nothing.
    void close();

    /// Whether the document has been loaded and each map has been measured. The frame is shown.
    bool isSettled();

private:
    PageFrame(WebKitWebPage* page, WebKitFrame* frame);
    static SelfSharingObject* resolve(JSContextRef context, JSObjectRef thisObject);
    static JSValueRef surfaceDisconnected(JSContextRef context, JSObjectRef function, JSObjectRef surface, size_t count,
                                          const JSValueRef arguments[], JSValueRef* exception);
    static void frameFinalized(gpointer self, GObject* frame);
    /// False when the engine could not run our scripts.
    bool installSurfaces();
    bool installNames();
    static std::shared_ptr<PageFrame> ofContext(JSContextRef context);
    /// The page's node as the isolated world knows it; null when it is none, or when the frame has another document.
    JSObjectRef isolatedNode(JSObjectRef node) const;
    std::shared_ptr<MapElement> find(JSObjectRef element);

    WebKitWebPage* const _page; // for comparison only
    WebKitFrame* _frame;        // null once it has gone
    JSGlobalContextRef const _pageContext;
    JSGlobalContextRef const _isolatedContext;
    JSObjectRef _surfaces = nullptr; // what Surface.js returned; lives as long as the isolated world's global object
    std::shared_ptr<ScriptContext> _scriptContext;
    std::shared_ptr<WebFrame> _webFrame;
    std::vector<std::shared_ptr<MapElement>> _maps;
    bool _isHidden = false;
    bool _isClosed = false;
};

} // namespace veyra
