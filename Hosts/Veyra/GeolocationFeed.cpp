#include "Hosts/Veyra/GeolocationFeed.h"

namespace veyra {

namespace {

void updatePosition(WebKitGeolocationManager* manager, const CLLocation& location) {
    WebKitGeolocationPosition* position = webkit_geolocation_position_new(
        location.coordinate().latitude, location.coordinate().longitude, location.horizontalAccuracy());
    if (location.verticalAccuracy() >= 0) {
        webkit_geolocation_position_set_altitude(position, location.altitude());
        webkit_geolocation_position_set_altitude_accuracy(position, location.verticalAccuracy());
    }
    webkit_geolocation_manager_update_position(manager, position);
    webkit_geolocation_position_free(position);
}

gboolean start(WebKitGeolocationManager* manager, LocationPlayer* player) {
    player->start([manager](const std::shared_ptr<const CLLocation>& location) { updatePosition(manager, *location); });
    return TRUE;
}

void stop(WebKitGeolocationManager*, LocationPlayer* player) {
    player->stop();
}

} // namespace

GeolocationFeed::GeolocationFeed(WebKitWebContext* context, const LocationTrack& track, double speed)
    : _player(track, speed), _manager(track.empty() ? nullptr : webkit_web_context_get_geolocation_manager(context)) {
    if (!_manager)
        return;
    g_object_ref(_manager);
    g_signal_connect(_manager, "start", G_CALLBACK(start), &_player);
    g_signal_connect(_manager, "stop", G_CALLBACK(stop), &_player);
}

GeolocationFeed::~GeolocationFeed() {
    if (!_manager)
        return;
    g_signal_handlers_disconnect_by_data(_manager, &_player);
    g_object_unref(_manager);
}

} // namespace veyra
