#include "Tests/Support/LoopbackServer.h"

#include <arpa/inet.h>
#include <chrono>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace veyra::test {

namespace {

unsigned bindLoopback(int socket) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address);
    socklen_t length = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length);
    return ntohs(address.sin_port);
}

bool isReady(int socket) {
    pollfd waiting{socket, POLLIN, 0};
    return poll(&waiting, 1, 20) > 0;
}

} // namespace

std::string requestedPath(const std::string& head) {
    return head.substr(4, head.find(' ', 4) - 4);
}

unsigned refusedPort() {
    const int taken = socket(AF_INET, SOCK_STREAM, 0); // bound, never listening, and kept so for the whole process
    return bindLoopback(taken);
}

LoopbackServer::LoopbackServer()
    : _socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)), _port(bindLoopback(_socket)) {
    listen(_socket, 128);
}

LoopbackServer::~LoopbackServer() {
    close(_socket);
}

void LoopbackServer::start() {
    _thread = std::thread([this] { run(); });
}

void LoopbackServer::stop() {
    _stopping = true;
    _thread.join();
    while (_connections > 0)
        std::this_thread::yield();
}

void LoopbackServer::run() {
    while (!_stopping) {
        if (!isReady(_socket))
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

void LoopbackServer::serve(int connection) {
    std::string head;
    while (!_stopping && !head.ends_with("\r\n\r\n")) {
        if (!isReady(connection))
            continue;
        char bytes[4096];
        const ssize_t count = read(connection, bytes, sizeof bytes);
        if (count <= 0)
            break;
        head.append(bytes, static_cast<size_t>(count));
        if (head[0] != 'G') // no request that is understood here, a TLS greeting for one
            break;
    }
    if (head.ends_with("\r\n\r\n"))
        answer(connection, head);
    close(connection);
}

bool LoopbackServer::isLeft(int connection, double seconds) {
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

bool LoopbackServer::send(int connection, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0) {
            ++_abandoned;
            return false;
        }
        bytes.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

} // namespace veyra::test
