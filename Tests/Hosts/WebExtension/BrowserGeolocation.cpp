// The application's side of geolocation.
#include "Tests/Hosts/WebExtension/Browser.h"

namespace veyra::test {

void Browser::listenToGeolocation() {
    _locations = webkit_web_context_get_geolocation_manager(webkit_web_view_get_context(_view));
    g_signal_connect(_locations, "start", G_CALLBACK((+[](WebKitGeolocationManager*, Browser* self) {
                         self->_isLocating = true;
                         return TRUE;
                     })),
                     this);
    g_signal_connect(_locations, "stop",
                     G_CALLBACK((+[](WebKitGeolocationManager*, Browser* self) { self->_isLocating = false; })), this);
    g_signal_connect(_view, "permission-request",
                     G_CALLBACK((+[](WebKitWebView*, WebKitPermissionRequest* request, Browser* self) -> gboolean {
                         if (!WEBKIT_IS_GEOLOCATION_PERMISSION_REQUEST(request))
                             return FALSE;
                         ++self->_requests;
                         self->_keptRequests.push_back(WEBKIT_PERMISSION_REQUEST(g_object_ref(request)));
                         if (self->_permission != Permission::Keep)
                             self->answerGeolocationRequests(self->_permission == Permission::Allow);
                         return TRUE;
                     })),
                     this);
}

void Browser::answerGeolocationRequests(bool allows) {
    for (WebKitPermissionRequest* request : _keptRequests) {
        if (allows)
            webkit_permission_request_allow(request);
        else
            webkit_permission_request_deny(request);
        g_object_unref(request);
    }
    _keptRequests.clear();
}

void Browser::locate(double latitude, double longitude, double accuracy) {
    WebKitGeolocationPosition* position = webkit_geolocation_position_new(latitude, longitude, accuracy);
    webkit_geolocation_manager_update_position(_locations, position);
    webkit_geolocation_position_free(position);
}

void Browser::locateWithAltitude(double latitude, double longitude, double accuracy, double altitude,
                                 double altitudeAccuracy) {
    WebKitGeolocationPosition* position = webkit_geolocation_position_new(latitude, longitude, accuracy);
    webkit_geolocation_position_set_altitude(position, altitude);
    webkit_geolocation_position_set_altitude_accuracy(position, altitudeAccuracy);
    webkit_geolocation_manager_update_position(_locations, position);
    webkit_geolocation_position_free(position);
}

void Browser::failToLocate() {
    webkit_geolocation_manager_failed(_locations, "no satellites");
}

} // namespace veyra::test
