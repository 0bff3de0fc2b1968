// The script side of one map (class MapSurface in Surface.js) as native code calls it. Web thread only. It is not kept
// alive from here: it calls nothing once it is detached, nor may it be called while its page is hidden, when the page
// may be collected without a word.
#pragma once

#include "Platform/UIKit/UIWindow.h"

#include <JavaScriptCore/JavaScript.h>

#include <string>

namespace veyra {

class SurfaceScript {
public:
    SurfaceScript(JSGlobalContextRef context, JSObjectRef surface) : _context(context), _surface(surface) {}

    JSGlobalContextRef context() const { return _context; }
    bool isAttached() const { return _surface != nullptr; }
    void detach() { _surface = nullptr; }

    /// Asks the page for one animation frame.
    void requestFrame();
    /// Begins and ends to ask the page's geolocation where the user is.
    void startLocating() { call("startLocating"); }
    void stopLocating() { call("stopLocating"); }
    /// Gives the canvas a text that assistive technology reads, a link when it leads somewhere.
    void setCaption(const UICaption& caption);
    /// Gives the canvas elements for assistive technology: what has the focus, and what can be done.
    void setAccessibilityState(const UIAccessibilityState& state);
    /// Keeps a script object alive as long as the map has not been stopped.
    void keepAlive(JSObjectRef object);

private:
    void call(const char* name);

    JSGlobalContextRef const _context;
    JSObjectRef _surface;
};

} // namespace veyra
