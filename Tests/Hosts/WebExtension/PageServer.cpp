#include "Tests/Hosts/WebExtension/PageServer.h"

#include <fstream>
#include <sstream>
#include <string_view>

namespace veyra::test {

namespace {

constexpr const char* strictPolicy = "default-src 'none'; script-src 'self'; frame-src 'self'; "
                                     "require-trusted-types-for 'script'; trusted-types 'none'";

std::string folderOf(std::string_view path) {
    if (path.starts_with("/pages/"))
        return VEYRA_SOURCE_FOLDER "/Tests/Pages/";
    if (path.starts_with("/scripts/"))
        return VEYRA_SOURCE_FOLDER "/Hosts/WebExtension/";
    return {};
}

} // namespace

PageServer::PageServer() : _server(soup_server_new("server-header", "test", nullptr)) {
    soup_server_add_handler(_server, nullptr, answer, nullptr, nullptr);
    soup_server_listen_local(_server, 0, SOUP_SERVER_LISTEN_IPV4_ONLY, nullptr);
    GSList* uris = soup_server_get_uris(_server);
    _port = static_cast<unsigned>(g_uri_get_port(static_cast<GUri*>(uris->data)));
    g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
}

void PageServer::answer(SoupServer*, SoupServerMessage* message, const char* path, GHashTable* query, gpointer) {
    const std::string_view wanted = path;
    const std::string folder = folderOf(wanted);
    std::ifstream file(folder + std::string(wanted.substr(wanted.find('/', 1) + 1)));
    if (folder.empty() || !file) {
        soup_server_message_set_status(message, 404, nullptr);
        return;
    }
    std::ostringstream body;
    body << file.rdbuf();
    if (query && g_hash_table_contains(query, "csp"))
        soup_message_headers_replace(soup_server_message_get_response_headers(message), "Content-Security-Policy",
                                     strictPolicy);
    soup_server_message_set_response(message, wanted.ends_with(".js") ? "text/javascript" : "text/html",
                                     SOUP_MEMORY_COPY, body.str().data(), body.str().size());
    soup_server_message_set_status(message, 200, nullptr);
}

} // namespace veyra::test
