#include "Hosts/Common/HostConfiguration.h"

#include "Classes/VeyraView.h"
#include "Hosts/Common/HostViewDelegate.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/WebKit/WebPlugInContainer.h"

#include <glib.h>

namespace veyra {

namespace {

bool isFileURL(const id& url) {
    const std::string text = url.string() ? url.string()->utf8() : std::string();
    return text.size() >= 5 && g_ascii_strncasecmp(text.c_str(), "file:", 5) == 0;
}

} // namespace

void configureCreatedViews(const HostConfiguration& configuration) {
    NSNotificationCenter::defaultCenter().addObserver(
        VeyraCreatedNotification,
        [configuration, delegate = std::make_shared<HostViewDelegate>()](const NSNotification& notification) {
            const auto view = std::dynamic_pointer_cast<VeyraView>(notification.object);
            if (!view || !notification.userInfo)
                return;
            view->setDelegate(delegate); // which the observer keeps: views do not
            view->setScreenScale(notification.userInfo->objectForKey(VeyraScreenScaleKey).doubleValue());
            view->setClientAllowsFileURLLoading(isFileURL(notification.userInfo->objectForKey(WebPlugInBaseURLKey)));
            view->setVerboseDebugLoggingEnabled(configuration.verboseDebugLogging);
            view->mapView()->setShowsScale(true);
            if (configuration.tileSource)
                view->mapView()->setTileSource(configuration.tileSource);
        });
}

} // namespace veyra
