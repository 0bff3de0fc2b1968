// Who decides whether a page may know where the user is. Main thread.
#pragma once

#include "Hosts/Veyra/CommandLine.h"

#include <functional>
#include <webkit2/webkit2.h>

namespace veyra {

/// Puts the question about the page's geolocation to the user, and calls `answered` once, later.
using GeolocationQuestion = std::function<void(WebKitWebView* view, std::function<void(bool)> answered)>;

/// Decides the view's requests for geolocation as the policy says, by the question where that is to ask. What else a
/// page asks permission for is left to the engine, which denies it.
void decideGeolocation(WebKitWebView* view, GeolocationPolicy policy, GeolocationQuestion question);

/// Asks in the terminal.
void askAboutGeolocationInTerminal(WebKitWebView* view, std::function<void(bool)> answered);

} // namespace veyra
