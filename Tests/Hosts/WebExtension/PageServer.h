// Serves the test pages on a loopback address: "/pages/…" from Tests/Pages, "/scripts/…" from Hosts/WebExtension. With
// the query "csp" pages come with a strict Content-Security-Policy that also demands Trusted Types.
#pragma once

#include <libsoup/soup.h>

#include <string>

namespace veyra::test {

class PageServer {
public:
    PageServer();
    /// "http://127.0.0.1:port".
    std::string origin() const { return "http://127.0.0.1:" + std::to_string(_port); }

private:
    static void answer(SoupServer* server, SoupServerMessage* message, const char* path, GHashTable* query,
                       gpointer self);
    SoupServer* const _server;
    unsigned _port = 0;
};

} // namespace veyra::test
