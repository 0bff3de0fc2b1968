#include "Tests/Support/TileServer.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <cstdio>
#include <sys/socket.h>

namespace veyra::test {

std::string TileRequest::field(const std::string& name) const {
    const std::string start = "\r\n" + name + ": ";
    const auto found = std::search(head.begin(), head.end(), start.begin(), start.end(),
                                   [](char a, char b) { return g_ascii_tolower(a) == g_ascii_tolower(b); });
    if (found == head.end())
        return "";
    const auto value = found + static_cast<ptrdiff_t>(start.size());
    return std::string(value, std::find(value, head.end(), '\r'));
}

TileServer::TileServer(Handler handler) : _handler(std::move(handler)) {
    start();
}

TileServer::~TileServer() {
    stop();
}

void TileServer::setHandler(Handler handler) {
    const std::lock_guard guard(_mutex);
    _handler = std::move(handler);
}

std::vector<TileRequest> TileServer::requests() const {
    const std::lock_guard guard(_mutex);
    return _requests;
}

size_t TileServer::countOfZoom(int zoom) const {
    const auto all = requests();
    return static_cast<size_t>(
        std::count_if(all.begin(), all.end(), [&](const TileRequest& request) { return request.zoom == zoom; }));
}

void TileServer::forgetRequests() {
    const std::lock_guard guard(_mutex);
    _requests.clear();
}

void TileServer::answer(int connection, const std::string& head) {
    TileRequest request{.path = requestedPath(head), .head = head};
    std::sscanf(request.path.c_str(), "/%d/%d/%d", &request.zoom, &request.column, &request.row);
    const int now = ++_atOnce;
    for (int most = _mostAtOnce; now > most && !_mostAtOnce.compare_exchange_weak(most, now);) {
    }
    answer(connection, request);
    --_atOnce;
}

void TileServer::answer(int connection, const TileRequest& request) {
    Handler handler;
    {
        const std::lock_guard guard(_mutex);
        _requests.push_back(request);
        handler = _handler;
    }
    const TileAnswer answer = handler(request);
    if (answer.delay > 0 && isLeft(connection, answer.delay))
        return;
    if (answer.resets) {
        const linger now{1, 0};
        setsockopt(connection, SOL_SOCKET, SO_LINGER, &now, sizeof now);
        return;
    }
    const long length = answer.announced < 0 ? static_cast<long>(answer.body.size()) : answer.announced;
    const std::string bytes = "HTTP/1.1 " + answer.status + "\r\nContent-Length: " + std::to_string(length) + "\r\n" +
                              answer.fields + "Connection: close\r\n\r\n" + answer.body;
    send(connection, bytes);
}

uint32_t tileColor(int zoom, int column, int row) {
    const auto part = [](int value) { return static_cast<uint32_t>(40 + value * 53 % 200); };
    return part(zoom) << 16 | part(column + 1) << 8 | part(row + 2);
}

std::string pictureOf(uint32_t color, int side, const char* format) {
    GdkPixbuf* const pixels = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, side, side);
    gdk_pixbuf_fill(pixels, color << 8 | 0xff);
    gchar* bytes = nullptr;
    gsize length = 0;
    gdk_pixbuf_save_to_buffer(pixels, &bytes, &length, format, nullptr, nullptr);
    g_object_unref(pixels);
    std::string picture(bytes ? bytes : "", length);
    g_free(bytes);
    return picture;
}

TileAnswer coloredTile(const TileRequest& request) {
    TileAnswer answer;
    answer.body = pictureOf(tileColor(request.zoom, request.column, request.row));
    return answer;
}

} // namespace veyra::test
