// A map whose standard type gets its tiles from a server of the test.
#pragma once

#include "Platform/MapKit/ImageTiles/MKImageSet.h"
#include "Tests/Platform/Foundation/CapturedLog.h"
#include "Tests/Platform/MapKit/ImageTiles/TemporaryFolder.h"
#include "Tests/Platform/MapKit/MapFixture.h"
#include "Tests/Support/TileServer.h"

namespace veyra {

class ImageTilesTest : public MapTest {
protected:
    ImageTilesTest();
    ~ImageTilesTest() override;

    /// Gives the map the server's tiles, under an address that no other test uses, and the world, or `source` in its
    /// place.
    void useServer(MKImageSetProperties properties = {}, const std::string& pattern = "/{z}/{x}/{y}.png",
                   const std::shared_ptr<const MKTileSource>& world = nullptr);
    void useSet(const std::shared_ptr<const MKImageSet>& set,
                const std::shared_ptr<const MKTileSource>& world = nullptr);
    /// Shows the map at a zoom, at which a tile of the server has 256 device pixels, with the corner of that tile at
    /// the view's top left.
    void showTile(int zoom, int column, int row);
    /// Frames until the condition holds; fails the test after ten seconds.
    void framesUntil(const std::function<bool()>& condition);
    /// As on the next day and in another process: nothing is left in memory.
    void forgetMemory();

    TemporaryFolder folder;
    std::unique_ptr<test::TileServer> server;
    CapturedLog log;
};

} // namespace veyra
