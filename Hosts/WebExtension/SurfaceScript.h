// The script side of one map (class MapSurface in Surface.js) as native code calls it. Web thread only. It is not kept
// alive from here: it calls nothing once it is detached, nor may it be called while its page is hidden, when the page
// may be collected without a word.
#pragma once

#include "Hosts/WebExtension/PixelBuffers.h"
#include "Platform/UIKit/UIAccessibility.h"

#include <JavaScriptCore/JavaScript.h>

#include <memory>

namespace veyra {

class SurfaceScript {
public:
    /// Keeps the pixel arrays alive while the drawing side may write to them. Made and destroyed on the web thread.
    class Hold;

    SurfaceScript(JSGlobalContextRef context, JSObjectRef surface) : _context(context), _surface(surface) {}

    JSGlobalContextRef context() const { return _context; }
    bool isAttached() const { return _surface != nullptr; }
    void detach() { _surface = nullptr; }

    /// Asks the page for one animation frame.
    void requestFrame();
    /// Makes pixel arrays of that size for a canvas of `scale` pixels a point; null when there is no memory.
    std::shared_ptr<PixelBuffers> allocate(int width, int height, double scale);
    /// Holds the arrays that were allocated last.
    std::shared_ptr<Hold> hold() const;
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
    std::array<JSObjectRef, 2> _arrays{}; // kept alive by the surface
};

class SurfaceScript::Hold {
public:
    Hold(JSGlobalContextRef context, const std::array<JSObjectRef, 2>& arrays);
    ~Hold();
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

private:
    JSGlobalContextRef const _context; // lives as long as an array of it
    const std::array<JSObjectRef, 2> _arrays;
};

} // namespace veyra
