// Where positions come from: the page's geolocation, a recorded track, a fixed place. The host gives one to each map.
// Main queue only; the provider may do its work elsewhere.
#pragma once

#include "Platform/CoreLocation/CLLocation.h"
#include "Platform/Foundation/NSError.h"

#include <functional>

namespace veyra {

/// The domain of the errors that providers report.
inline constexpr const char* kCLErrorDomain = "kCLErrorDomain";
enum CLError : int {
    kCLErrorLocationUnknown = 0, ///< no position at present
    kCLErrorDenied = 1,          ///< the user does not allow it
};

class CLLocationProvider {
public:
    struct Handlers {
        std::function<void(const std::shared_ptr<const CLLocation>&)> didUpdate; ///< each new position
        std::function<void(const std::shared_ptr<NSError>&)> didFail;            ///< positions may follow nevertheless
    };

    virtual ~CLLocationProvider() = default;
    /// From now on the handlers are called, on the main queue and not within this call: for the position that is known
    /// already, if there is one, and for each that follows. Replaces the handlers of an earlier start.
    virtual void startUpdatingLocation(Handlers handlers) = 0;
    /// No handler is called any more.
    virtual void stopUpdatingLocation() = 0;
};

} // namespace veyra
