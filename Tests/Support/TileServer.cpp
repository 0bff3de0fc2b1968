#include "Tests/Support/TileServer.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <arpa/inet.h>
#include <chrono>
#include <cstdio>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

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

TileServer::TileServer(Handler handler)
    : _socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)), _handler(std::move(handler)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bind(_socket, reinterpret_cast<sockaddr*>(&address), sizeof address);
    socklen_t length = sizeof address;
    getsockname(_socket, reinterpret_cast<sockaddr*>(&address), &length);
    _port = ntohs(address.sin_port);
    listen(_socket, 128);
    _thread = std::thread([this] { run(); });
}

TileServer::~TileServer() {
    _stopping = true;
    _thread.join();
    while (_connections > 0)
        std::this_thread::yield();
    close(_socket);
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

void TileServer::run() {
    while (!_stopping) {
        pollfd waiting{_socket, POLLIN, 0};
        if (poll(&waiting, 1, 20) <= 0)
            continue;
        const int connection = accept4(_socket, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0)
            continue;
        ++_connections;
        std::thread([this, connection] {
            serve(connection);
            --_connections;
        }).detach();
    }
}

void TileServer::serve(int connection) {
    TileRequest request;
    while (!_stopping && !request.head.ends_with("\r\n\r\n")) {
        pollfd waiting{connection, POLLIN, 0};
        if (poll(&waiting, 1, 20) <= 0)
            continue;
        char bytes[4096];
        const ssize_t count = read(connection, bytes, sizeof bytes);
        if (count <= 0)
            break;
        request.head.append(bytes, static_cast<size_t>(count));
    }
    if (request.head.ends_with("\r\n\r\n")) {
        request.path = request.head.substr(4, request.head.find(' ', 4) - 4);
        std::sscanf(request.path.c_str(), "/%d/%d/%d", &request.zoom, &request.column, &request.row);
        const int now = ++_atOnce;
        for (int most = _mostAtOnce; now > most && !_mostAtOnce.compare_exchange_weak(most, now);) {
        }
        answer(connection, request);
        --_atOnce;
    }
    close(connection);
}

bool TileServer::isLeft(int connection, double seconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    do {
        pollfd waiting{connection, POLLRDHUP, 0};
        if (poll(&waiting, 1, 5) > 0) {
            ++_abandoned;
            return true;
        }
    } while (!_stopping && std::chrono::steady_clock::now() < end);
    return _stopping;
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
    for (size_t sent = 0; sent < bytes.size();) {
        const ssize_t count = send(connection, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) {
            ++_abandoned;
            return;
        }
        sent += static_cast<size_t>(count);
    }
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
