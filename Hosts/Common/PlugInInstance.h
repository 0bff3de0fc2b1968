// One live map of a host: the plug-in view with the window that shows it. Made, started and stopped on the web thread;
// the window is used on the main queue only. The host owns it; stopping frees the view on the main queue.
#pragma once

#include "Classes/VeyraView.h"
#include "Platform/CoreLocation/CLLocationProvider.h"
#include "Platform/UIKit/UIWindow.h"
#include "Platform/WebKit/WebPlugInContainer.h"

#include <map>
#include <string>

namespace veyra {

/// What a host knows of the element that it makes a view for.
struct PlugInElement {
    std::map<std::string, std::string> attributes; ///< attributes and parameters, names in lower case
    std::string baseURL;
    std::shared_ptr<WebFrame> frame;
    double screenScale = 1;                               ///< device pixels a point
    std::shared_ptr<CLLocationProvider> locationProvider; ///< null: the user cannot be located
};

class PlugInInstance : public std::enable_shared_from_this<PlugInInstance> {
public:
    /// Makes the view and its window on the main queue, waits for them, and starts the view. Null when the view could
    /// not be made (logged).
    static std::shared_ptr<PlugInInstance> create(const PlugInElement& element);
    ~PlugInInstance();

    /// The scripting object; null after `stop`.
    const std::shared_ptr<VeyraView>& view() const { return _view; }
    /// Main queue only; stays until the last reference to the instance has gone.
    const std::shared_ptr<UIWindow>& window() const { return _window; }
    /// Stops the view and frees it on the main queue. Further calls do nothing.
    void stop();

private:
    PlugInInstance() = default;
    std::shared_ptr<VeyraView> _view;
    std::shared_ptr<UIWindow> _window;
};

} // namespace veyra
