#include "Hosts/Veyra/GeolocationPermission.h"

#include "Hosts/Veyra/TerminalQuestion.h"

namespace veyra {

namespace {

struct Decider {
    GeolocationPolicy policy;
    GeolocationQuestion question;
};

void answer(WebKitPermissionRequest* request, bool allows) {
    if (allows)
        webkit_permission_request_allow(request);
    else
        webkit_permission_request_deny(request);
}

gboolean permissionRequested(WebKitWebView* view, WebKitPermissionRequest* request, Decider* decider) {
    if (!WEBKIT_IS_GEOLOCATION_PERMISSION_REQUEST(request))
        return FALSE;
    if (decider->policy != GeolocationPolicy::Ask) {
        answer(request, decider->policy == GeolocationPolicy::Allow);
        return TRUE;
    }
    g_object_ref(request);
    decider->question(view, [request](bool allows) {
        answer(request, allows);
        g_object_unref(request);
    });
    return TRUE;
}

} // namespace

void decideGeolocation(WebKitWebView* view, GeolocationPolicy policy, GeolocationQuestion question) {
    const auto free = [](gpointer decider, GClosure*) { delete static_cast<Decider*>(decider); };
    g_signal_connect_data(view, "permission-request", G_CALLBACK(permissionRequested),
                          new Decider{policy, std::move(question)}, free, GConnectFlags());
}

void askAboutGeolocationInTerminal(WebKitWebView* view, std::function<void(bool)> answered) {
    askInTerminal(std::string("veyra: ") + webkit_web_view_get_uri(view) + " asks where you are. Tell it?",
                  std::move(answered));
}

} // namespace veyra
