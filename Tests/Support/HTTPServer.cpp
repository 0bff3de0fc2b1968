#include "Tests/Support/HTTPServer.h"

#include <algorithm>
#include <arpa/inet.h>
#include <chrono>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace veyra::test {

namespace {

sockaddr_in loopback() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

unsigned bindLoopback(int socket) {
    sockaddr_in address = loopback();
    bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address);
    socklen_t length = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length);
    return ntohs(address.sin_port);
}

} // namespace

std::string httpAnswer(const std::string& status, const std::string& body, const std::string& headers) {
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + headers +
           "Connection: close\r\n\r\n" + body;
}

unsigned refusedPort() {
    const int taken = socket(AF_INET, SOCK_STREAM, 0); // bound, never listening, and kept so for the whole process
    return bindLoopback(taken);
}

HTTPServer::HTTPServer() : _socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    _port = bindLoopback(_socket);
    listen(_socket, 64);
    _thread = std::thread([this] { run(); });
}

HTTPServer::~HTTPServer() {
    _stopping = true;
    _thread.join();
    for (std::thread& connection : _connections)
        connection.join();
    close(_socket);
}

void HTTPServer::answer(const std::string& path, Answer answer) {
    const std::lock_guard guard(_mutex);
    _answers[path] = std::move(answer);
}

void HTTPServer::serve(const std::string& path, const std::string& body, const std::string& type) {
    answer(path, {.bytes = httpAnswer("200 OK", body, "Content-Type: " + type + "\r\n")});
}

std::vector<std::string> HTTPServer::requests() const {
    const std::lock_guard guard(_mutex);
    return _requests;
}

size_t HTTPServer::count(const std::string& path) const {
    const std::lock_guard guard(_mutex);
    return static_cast<size_t>(std::count_if(_requests.begin(), _requests.end(), [&](const std::string& request) {
        return request.starts_with("GET " + path + " ");
    }));
}

void HTTPServer::run() {
    while (!_stopping) {
        pollfd waiting{_socket, POLLIN, 0};
        if (poll(&waiting, 1, 20) <= 0)
            continue;
        const int connection = accept4(_socket, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection >= 0)
            _connections.emplace_back([this, connection] { handle(connection); });
    }
}

void HTTPServer::handle(int connection) {
    std::string request;
    while (!_stopping && !request.ends_with("\r\n\r\n")) {
        pollfd waiting{connection, POLLIN, 0};
        if (poll(&waiting, 1, 20) <= 0)
            continue;
        char bytes[4096];
        const ssize_t count = read(connection, bytes, sizeof bytes);
        if (count <= 0)
            break;
        request.append(bytes, static_cast<size_t>(count));
        if (request[0] != 'G') // no request that is understood here, a TLS greeting for one
            break;
    }
    if (request.ends_with("\r\n\r\n")) {
        Answer found{.bytes =
                         httpAnswer("404 Not Found", "<!doctype html><p>nothing here", "Content-Type: text/html\r\n")};
        {
            const std::lock_guard guard(_mutex);
            _requests.push_back(request);
            const std::string path = request.substr(4, request.find(' ', 4) - 4);
            if (const auto known = _answers.find(path); known != _answers.end())
                found = known->second;
        }
        send(connection, found);
    }
    close(connection);
}

void HTTPServer::send(int connection, const Answer& answer) {
    // True when the other side has closed, or the server is to stop.
    const auto pause = [&](double seconds) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        do {
            pollfd waiting{connection, POLLRDHUP, 0};
            if (poll(&waiting, 1, 5) > 0) {
                ++_abandoned;
                return true;
            }
        } while (!_stopping && std::chrono::steady_clock::now() < end);
        return _stopping.load();
    };
    while (_held)
        if (pause(0.005))
            return;
    if (answer.delay > 0 && pause(answer.delay))
        return;
    const size_t piece = std::max<size_t>(1, (answer.bytes.size() + answer.pieces - 1) / answer.pieces);
    for (size_t sent = 0; sent < answer.bytes.size();) {
        const size_t length = std::min(piece, answer.bytes.size() - sent);
        const ssize_t count = ::send(connection, answer.bytes.data() + sent, length, MSG_NOSIGNAL);
        if (count <= 0) {
            ++_abandoned;
            return;
        }
        sent += static_cast<size_t>(count);
        if (answer.delayBetweenPieces > 0 && sent < answer.bytes.size() && pause(answer.delayBetweenPieces))
            return;
    }
    if (!answer.closes)
        pause(3600);
}

} // namespace veyra::test
