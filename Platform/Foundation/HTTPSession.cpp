#include "Platform/Foundation/HTTPSession.h"

#include "Platform/Foundation/DispatchQueue.h"

#include <libsoup/soup.h>

namespace veyra {

namespace {

constexpr unsigned maximumConnections = 24;
constexpr unsigned maximumConnectionsToAHost = 6;

SoupSession* makeSession() {
    SoupSession* const session = soup_session_new_with_options(
        "max-conns", maximumConnections, "max-conns-per-host", maximumConnectionsToAHost, "user-agent", "Veyra",
        "timeout", 0, nullptr); // requests have timers of their own
    // Lengths that servers announce are those of the bytes that arrive, and those arrive as they are sent.
    soup_session_remove_feature_by_type(session, SOUP_TYPE_CONTENT_DECODER);
    soup_session_remove_feature_by_type(session, SOUP_TYPE_CONTENT_SNIFFER);
    return session;
}

} // namespace

SoupSession* mainQueueHTTPSession() {
    static SoupSession* session = nullptr;
    static GMainContext* contextOfSession = nullptr;
    GMainContext* const context = dispatch_get_main_queue().context();
    if (contextOfSession != context) {
        // A host replaces its main queue at most before anything is loaded.
        g_clear_object(&session);
        session = makeSession();
        contextOfSession = context;
    }
    return session;
}

} // namespace veyra
