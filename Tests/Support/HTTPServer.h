// An HTTP server on a loopback address for tests of what is downloaded: each path has a scripted answer, written to the
// connection byte by byte, so that it can lie about its length, stop in the middle or never begin. Its own thread.
#pragma once

#include "Tests/Support/LoopbackServer.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace veyra::test {

class HTTPServer : public LoopbackServer {
public:
    struct Answer {
        std::string bytes;             ///< status line, headers and body
        bool closes = true;            ///< closes the connection afterwards; else keeps it open without a word
        double delay = 0;              ///< seconds before the first byte
        size_t pieces = 1;             ///< the bytes are sent in so many pieces
        double delayBetweenPieces = 0; ///< seconds
    };

    HTTPServer();
    ~HTTPServer() override;

    /// "http://127.0.0.1:PORT" and the path.
    std::string url(const std::string& path) const { return origin() + path; }
    /// What a GET of the path is answered with; others get a 404 with a page.
    void answer(const std::string& path, Answer answer);
    /// A 200 with that body, its length announced.
    void serve(const std::string& path, const std::string& body, const std::string& type = "image/png");

    /// While held, requests are taken and no answer is begun.
    void hold(bool held) { _held = held; }

    /// The requests so far, each with its headers.
    std::vector<std::string> requests() const;
    /// How often the path was asked for.
    size_t count(const std::string& path) const;

private:
    void answer(int connection, const std::string& head) override;
    void sendAnswer(int connection, const Answer& answer);

    std::atomic<bool> _held{false};
    mutable std::mutex _mutex;
    std::map<std::string, Answer> _answers; // guarded by _mutex
    std::vector<std::string> _requests;     // guarded by _mutex
};

/// The bytes of an answer: a status line, a length, further header lines each with its CRLF, and the body.
std::string httpAnswer(const std::string& status, const std::string& body, const std::string& headers = {});

} // namespace veyra::test
