// What the servers of tests have in common: a port on a loopback address, connections each with a thread, requests read
// up to the end of their head, and bytes sent while it is watched whether the other side is still there.
#pragma once

#include <atomic>
#include <string>
#include <string_view>
#include <thread>

namespace veyra::test {

class LoopbackServer {
public:
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    /// "http://127.0.0.1:PORT".
    std::string origin() const { return "http://127.0.0.1:" + std::to_string(_port); }
    /// Connections that the other side closed before they were answered in full.
    size_t abandoned() const { return _abandoned; }

protected:
    LoopbackServer();
    virtual ~LoopbackServer();

    /// Takes connections from then on: the last thing that a constructor does.
    void start();
    /// Ends every connection's thread: the first thing that a destructor does.
    void stop();

    /// Answers a GET, on a thread of the connection. `head` is the request line and the header fields.
    virtual void answer(int connection, const std::string& head) = 0;

    /// Waits. True when the other side has closed, or the server is to stop.
    bool isLeft(int connection, double seconds);
    /// False when the other side has closed.
    bool send(int connection, std::string_view bytes);

private:
    void run();
    void serve(int connection);

    const int _socket;
    const unsigned _port;
    std::atomic<bool> _stopping{false};
    std::atomic<size_t> _abandoned{0};
    std::atomic<int> _connections{0}; // each has a thread
    std::thread _thread;
};

/// The path that a request's head asks for.
std::string requestedPath(const std::string& head);

/// A loopback port on which nobody listens.
unsigned refusedPort();

} // namespace veyra::test
