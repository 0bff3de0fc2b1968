// What every host sets on a view at its creation: it observes "VeyraCreatedNotification" and configures the view there.
#pragma once

#include "Platform/Foundation/NSObject.h"

namespace veyra {

class MKTileSource;

/// The plug-in argument that carries the screen's scale (number: device pixels a point) from the host to its observer.
inline constexpr const char* VeyraScreenScaleKey = "VeyraScreenScaleKey";

struct HostConfiguration {
    bool verboseDebugLogging = false;
    std::shared_ptr<const MKTileSource> tileSource{}; ///< null: the built-in world
};

/// Observes creations for the rest of the process. Every view gets the process's HostViewDelegate; the screen's scale
/// comes with the plug-in arguments; loading from file addresses is allowed to pages that are files themselves. Called
/// once, before the first view is made.
void configureCreatedViews(const HostConfiguration& configuration);

} // namespace veyra
