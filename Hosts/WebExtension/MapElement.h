// One live map of a page: the plug-in instance of an <object> element, its presenter, and the ways to find it. Web
// thread only. Owned by its PageFrame from start to stop; the handle that Surface.js holds knows it weakly.
#pragma once

#include "Hosts/Common/PlugInInstance.h"
#include "Hosts/WebExtension/FramePresenter.h"
#include "Hosts/WebExtension/MapLocation.h"

namespace veyra {

class MapElement : public std::enable_shared_from_this<MapElement> {
public:
    /// Makes and starts the view for an element. `surface` is its MapSurface, in `context`. Null when no view could be
    /// made.
    static std::shared_ptr<MapElement> start(PlugInElement element, JSGlobalContextRef context, JSObjectRef surface);
    ~MapElement();
    /// Stops and frees the view. Further calls do nothing.
    void stop();

    const std::shared_ptr<VeyraView>& view() const { return _instance->view(); }
    FramePresenter& presenter() { return *_presenter; }
    MapLocation& location() { return *_location; }
    /// Main queue only.
    const std::shared_ptr<UIWindow>& window() const { return _instance->window(); }

    /// The script object for native functions by which Surface.js names this map.
    JSObjectRef makeHandle();
    /// The map of a handle; null for anything else and for a map that has been stopped.
    static std::shared_ptr<MapElement> fromHandle(JSContextRef context, JSValueRef handle);

    /// The map that was last seen behind that wrapper of the page's world; null when that is not known.
    static MapElement* behindWrapper(JSObjectRef wrapper);
    /// Remembers the wrapper, which lives as long as the map from now on; not while the page is hidden.
    void setWrapper(JSObjectRef wrapper);

    /// The page may be collected from now on, and another object may come to the wrapper's address.
    void pageHidden();
    void pageShown();
    bool isPageHidden() const { return _isPageHidden; }

private:
    void forgetWrapper();
    MapElement(std::shared_ptr<PlugInInstance> instance, std::shared_ptr<MapLocation> location)
        : _instance(std::move(instance)), _location(std::move(location)) {}

    const std::shared_ptr<PlugInInstance> _instance;
    const std::shared_ptr<MapLocation> _location;
    std::shared_ptr<FramePresenter> _presenter;
    JSObjectRef _wrapper = nullptr;
    bool _isPageHidden = false;
};

} // namespace veyra
