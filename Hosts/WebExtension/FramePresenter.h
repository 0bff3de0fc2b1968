// Brings a map's frames from its window to its canvas. The window says that it needs a frame; the frame is drawn on the
// main queue into the window's store, and the next animation frame of the page puts what has changed on the canvas.
// Until it has, nothing is drawn: the store is the drawing's or the canvas', never both's. While nothing changes,
// nothing is requested.
//
// Web thread only. Owned by its MapElement; drawings on their way keep what they need.
#pragma once

#include "Hosts/WebExtension/SurfaceScript.h"

#include <memory>
#include <optional>
#include <vector>

namespace veyra {

class FramePresenter : public std::enable_shared_from_this<FramePresenter> {
public:
    /// `settled` is called each time the presenter or the window may have come to rest.
    FramePresenter(std::shared_ptr<UIWindow> window, JSGlobalContextRef context, JSObjectRef surface,
                   std::function<void()> settled);

    /// Begins to listen to the window.
    void start();
    /// No frame is asked for or put from now on.
    void stop();

    /// The size in points, the device pixels a point, whether anybody can see the map, and whether the page's
    /// surroundings are dark.
    void layOut(CGSize size, double scale, bool isVisible, UIUserInterfaceStyle style);
    /// The page is hidden, and may be collected: its script is not called until the next layout that is visible.
    void suspend();
    /// The page is shown again; an animation frame that it was asked for may have been lost.
    void resume() { _isFrameRequested = false; }

    /// A picture and what of it is not on the canvas.
    struct Picture {
        std::shared_ptr<const UIWindowStore> store;
        std::vector<PixelRect> changes;
        int64_t drawingTime = 0; ///< microseconds
    };
    /// The animation frame that was asked for has come: what it must put on the canvas before it calls `framePut`, or
    /// null when there is nothing.
    const Picture* animationFrame();
    /// What waits to be put or is being put; null when nothing is.
    const Picture* picture() const { return _picture ? &*_picture : nullptr; }
    /// The picture is on the canvas.
    void framePut();

    /// True when no frame is wanted, being drawn or waiting to be put; also when nobody can see the map.
    bool isSettled() const;
    /// False when nobody can see the map.
    bool isShown() const { return _surface.isAttached() && _isVisible && !_size.isEmpty(); }
    SurfaceScript& surface() { return _surface; }

private:
    struct Drawing;
    void frameWanted();
    void advance();
    void startDrawing();
    void finishDrawing(Drawing& drawing);

    const std::shared_ptr<UIWindow> _window; // main queue only
    const std::function<void()> _settled;
    SurfaceScript _surface;
    std::optional<UICaption> _newCaption;                       // that the page has not been given
    std::optional<UIAccessibilityState> _newAccessibilityState; // likewise
    CGSize _size;
    double _scale = 1;
    bool _isVisible = false;
    UIUserInterfaceStyle _style = UIUserInterfaceStyleLight;
    bool _isWanted = false;
    bool _isDrawing = false;
    bool _isFrameRequested = false;
    bool _hadFrameSinceDrawing = true;             // one drawing an animation frame
    int64_t _putStart = 0;                         // of the picture, microseconds
    std::optional<Picture> _picture;               // that waits to be put
    std::weak_ptr<const UIWindowStore> _lastStore; // of which all that the canvas lacks is known
};

} // namespace veyra
