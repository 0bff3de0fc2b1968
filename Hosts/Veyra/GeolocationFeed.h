// Feeds the geolocation of all pages of a web context from a track instead of the system's location service. Main
// thread; the command owns it, and it outlives the context's pages.
#pragma once

#include "Hosts/Veyra/LocationPlayer.h"

#include <webkit2/webkit2.h>

namespace veyra {

class GeolocationFeed {
public:
    /// An empty track leaves the context to the system's service.
    GeolocationFeed(WebKitWebContext* context, const LocationTrack& track, double speed);
    ~GeolocationFeed();
    GeolocationFeed(const GeolocationFeed&) = delete;
    GeolocationFeed& operator=(const GeolocationFeed&) = delete;

private:
    LocationPlayer _player;
    WebKitGeolocationManager* const _manager; // null for an empty track
};

} // namespace veyra
