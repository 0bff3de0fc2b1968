// A server of tile images on a loopback address, with the address "/ZOOM/COLUMN/ROW.png" for each. Every answer is what
// the test's function says; the server counts what is asked for and how often it is left before it has answered. Its
// own threads; every method may be called on any thread.
#pragma once

#include "Tests/Support/LoopbackServer.h"

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace veyra::test {

struct TileRequest {
    int zoom = 0, column = 0, row = 0;
    std::string path;
    std::string head; ///< request line and header fields

    /// The value of a header field, or "".
    std::string field(const std::string& name) const;
};

struct TileAnswer {
    std::string status = "200 OK";
    std::string body;
    std::string fields;  ///< further header fields, each with its CRLF
    double delay = 0;    ///< seconds before the first byte
    bool resets = false; ///< the connection is broken instead of answered
    long announced = -1; ///< length that is announced; below 0: that of the body
};

class TileServer : public LoopbackServer {
public:
    using Handler = std::function<TileAnswer(const TileRequest&)>;

    explicit TileServer(Handler handler);
    ~TileServer() override;

    /// Replaces what later requests are answered with.
    void setHandler(Handler handler);
    /// The pattern of the tiles' addresses.
    std::string pattern() const { return origin() + "/{z}/{x}/{y}.png"; }

    std::vector<TileRequest> requests() const;
    size_t count() const { return requests().size(); }
    size_t countOfZoom(int zoom) const;
    void forgetRequests();
    /// The most requests that were being answered at one time.
    int mostAtOnce() const { return _mostAtOnce; }

private:
    void answer(int connection, const std::string& head) override;
    void answer(int connection, const TileRequest& request);

    std::atomic<int> _atOnce{0}, _mostAtOnce{0};
    mutable std::mutex _mutex;
    Handler _handler;                   // guarded by _mutex
    std::vector<TileRequest> _requests; // guarded by _mutex
};

/// The colour of a tile in the images below, 0x00RRGGBB: one for each tile of the first zooms.
uint32_t tileColor(int zoom, int column, int row);
/// A picture of one colour: "png", "jpeg" or "webp".
std::string pictureOf(uint32_t color, int side = 256, const char* format = "png");
/// An opaque PNG of a tile's colour.
TileAnswer coloredTile(const TileRequest& request);

} // namespace veyra::test
