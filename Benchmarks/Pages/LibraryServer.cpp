#include "Benchmarks/Pages/LibraryServer.h"

#include <cairo.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace veyra::benchmark {

namespace {

// A quiet ground with streets, as maps have them: what its decoding and drawing costs is like theirs.
std::string makeTile() {
    constexpr int side = 256;
    cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, side, side);
    cairo_t* cr = cairo_create(image);
    cairo_set_source_rgb(cr, 0.95, 0.94, 0.91);
    cairo_paint(cr);
    for (int i = 0; i < 12; ++i) {
        cairo_set_source_rgb(cr, 0.6 + 0.03 * i, 0.8, 0.9 - 0.03 * i);
        cairo_set_line_width(cr, 1 + i % 4);
        cairo_move_to(cr, 0, 23 * i);
        cairo_curve_to(cr, 80, 23 * i + 60, 170, 200 - 11 * i, side, 23 * i);
        cairo_stroke(cr);
    }
    cairo_destroy(cr);
    std::string bytes;
    cairo_surface_write_to_png_stream(
        image,
        [](void* to, const unsigned char* data, unsigned length) {
            static_cast<std::string*>(to)->append(reinterpret_cast<const char*>(data), length);
            return CAIRO_STATUS_SUCCESS;
        },
        &bytes);
    cairo_surface_destroy(image);
    return bytes;
}

const char* typeOf(const std::string& file) {
    if (file.ends_with(".html"))
        return "text/html; charset=utf-8";
    if (file.ends_with(".js") || file.ends_with(".mjs"))
        return "text/javascript; charset=utf-8";
    if (file.ends_with(".css"))
        return "text/css";
    return "image/png";
}

void respond(SoupServerMessage* message, const char* type, const std::string& body) {
    soup_server_message_set_status(message, SOUP_STATUS_OK, nullptr);
    soup_message_headers_append(soup_server_message_get_response_headers(message), "Cache-Control", "max-age=3600");
    soup_server_message_set_response(message, type, SOUP_MEMORY_COPY, body.data(), body.size());
}

} // namespace

LibraryServer::LibraryServer(std::string modules)
    : _modules(std::move(modules)), _tile(makeTile()), _server(soup_server_new(nullptr, nullptr)) {
    soup_server_add_handler(
        _server, nullptr,
        [](SoupServer*, SoupServerMessage* message, const char* path, GHashTable*, gpointer self) {
            static_cast<LibraryServer*>(self)->answer(message, path);
        },
        this, nullptr);
    GError* error = nullptr;
    if (!soup_server_listen_local(_server, 0, SOUP_SERVER_LISTEN_IPV4_ONLY, &error))
        throw std::runtime_error(error->message);
}

LibraryServer::~LibraryServer() {
    soup_server_disconnect(_server);
    g_object_unref(_server);
}

std::string LibraryServer::url(const std::string& page) const {
    GSList* addresses = soup_server_get_uris(_server);
    char* text = g_uri_to_string(static_cast<GUri*>(addresses->data));
    const std::string url = text + page;
    g_free(text);
    g_slist_free_full(addresses, reinterpret_cast<GDestroyNotify>(g_uri_unref));
    return url;
}

void LibraryServer::answer(SoupServerMessage* message, const std::string& path) const {
    static const std::string modules = "/modules/";
    if (path.starts_with("/tiles/"))
        respond(message, "image/png", _tile);
    else if (path.starts_with(modules))
        answerFile(message, _modules + '/' + path.substr(modules.size()));
    else if (path == "/workload.js")
        answerFile(message, VEYRA_BENCHMARK_PAGES + path);
    else
        answerFile(message, VEYRA_BENCHMARK_PAGES "/Libraries" + path);
}

void LibraryServer::answerFile(SoupServerMessage* message, const std::string& file) const {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        soup_server_message_set_status(message, SOUP_STATUS_NOT_FOUND, nullptr);
        return;
    }
    respond(message, typeOf(file), std::string(std::istreambuf_iterator<char>(stream), {}));
}

} // namespace veyra::benchmark
