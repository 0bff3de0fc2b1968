// The user's location for one map of a page, by the page's own geolocation: the application is asked for permission as
// for any other use of it, and the engine finds the position. While the map has asked and has no answer, or follows the
// user, one geolocation watch runs.
//
// Web thread, but for the provider's methods, which the map calls on the main queue. Owned by its MapElement and the
// map view. Nothing is asked of a page while it is hidden, nor after the element has gone.
#pragma once

#include "Platform/CoreLocation/CLLocationProvider.h"

#include <vector>

namespace veyra {

class MapElement;

class MapLocation final : public CLLocationProvider, public std::enable_shared_from_this<MapLocation> {
public:
    /// The element, once it exists; until then nothing can be asked.
    void setMap(const std::shared_ptr<MapElement>& map) { _map = map; }

    /// Asks whether the listener may know where the user is: answers by its `allow` or `deny`, later, or at once when
    /// the page's geolocation has answered before.
    void ask(const std::shared_ptr<NSObject>& listener);
    /// True while an answer is due.
    bool isAsking() const { return !_listeners.empty(); }

    // What the page's geolocation says.
    void located(const std::shared_ptr<const CLLocation>& location);
    /// `code` is a GeolocationPositionError's: 1 permission denied, else there is no position at present.
    void notLocated(int code, const std::string& message);

    /// The page can be asked again after it was hidden.
    void pageShown() { followWishes(); }

    void startUpdatingLocation(Handlers handlers) override;
    void stopUpdatingLocation() override;

private:
    void setWatchWanted(bool wanted);
    void followWishes();
    void answer(bool allows);
    void stopUnlessUsed();
    /// Calls a handler of the main queue with what is known last.
    void report();

    std::weak_ptr<MapElement> _map;
    std::vector<std::weak_ptr<NSObject>> _listeners; // that wait for an answer
    bool _isUpdating = false;                        // the map follows the user
    bool _isWatchWanted = false;
    bool _isWatching = false;
    std::shared_ptr<const CLLocation> _location; // what the watch said last; at most one of the two
    std::shared_ptr<NSError> _error;

    std::shared_ptr<const Handlers> _handlers; // main queue only
};

} // namespace veyra
