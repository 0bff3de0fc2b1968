#include "Tests/Support/HTTPServer.h"

#include <algorithm>

namespace veyra::test {

std::string httpAnswer(const std::string& status, const std::string& body, const std::string& headers) {
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + headers +
           "Connection: close\r\n\r\n" + body;
}

HTTPServer::HTTPServer() {
    start();
}

HTTPServer::~HTTPServer() {
    stop();
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

void HTTPServer::answer(int connection, const std::string& head) {
    Answer found{.bytes = httpAnswer("404 Not Found", "<!doctype html><p>nothing here", "Content-Type: text/html\r\n")};
    {
        const std::lock_guard guard(_mutex);
        _requests.push_back(head);
        if (const auto known = _answers.find(requestedPath(head)); known != _answers.end())
            found = known->second;
    }
    sendAnswer(connection, found);
}

void HTTPServer::sendAnswer(int connection, const Answer& answer) {
    while (_held)
        if (isLeft(connection, 0.005))
            return;
    if (answer.delay > 0 && isLeft(connection, answer.delay))
        return;
    const std::string_view bytes = answer.bytes;
    const size_t piece = std::max<size_t>(1, (bytes.size() + answer.pieces - 1) / answer.pieces);
    for (size_t sent = 0; sent < bytes.size(); sent += piece) {
        if (sent > 0 && answer.delayBetweenPieces > 0 && isLeft(connection, answer.delayBetweenPieces))
            return;
        if (!send(connection, bytes.substr(sent, piece)))
            return;
    }
    if (!answer.closes)
        isLeft(connection, 3600);
}

} // namespace veyra::test
