// Serves the pages of the script map libraries, the libraries, and a tile image for every place, on a loopback address.
// On GTK's main thread.
#pragma once

#include <libsoup/soup.h>

#include <string>

namespace veyra::benchmark {

class LibraryServer {
public:
    /// `modules` is the folder in which npm has put the libraries. Throws std::runtime_error when no port is free.
    explicit LibraryServer(std::string modules);
    ~LibraryServer();
    LibraryServer(const LibraryServer&) = delete;
    LibraryServer& operator=(const LibraryServer&) = delete;

    /// The address of a page: "leaflet.html".
    std::string url(const std::string& page) const;

private:
    void answer(SoupServerMessage* message, const std::string& path) const;
    void answerFile(SoupServerMessage* message, const std::string& file) const;

    const std::string _modules;
    const std::string _tile; // PNG
    SoupServer* const _server;
};

} // namespace veyra::benchmark
