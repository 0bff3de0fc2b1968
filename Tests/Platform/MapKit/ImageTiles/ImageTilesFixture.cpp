#include "Tests/Platform/MapKit/ImageTiles/ImageTilesFixture.h"

#include "Platform/MapKit/ImageTiles/MKImageDisk.h"
#include "Platform/MapKit/ImageTiles/MKImageTileSource.h"
#include "Platform/MapKit/ImageTiles/MKWebImageSet.h"
#include "Platform/MapKit/MKTileLoader.h"

#include <chrono>
#include <thread>

namespace veyra {

ImageTilesTest::ImageTilesTest() : server(std::make_unique<test::TileServer>(test::coloredTile)) {
    forgetMemory();
}

ImageTilesTest::~ImageTilesTest() {
    // Requests that are under way are left before the server waits for its threads.
    map->setTileSource(source);
    host->removeFromSuperview();
    map->removeFromSuperview();
    window.reset();
    host.reset();
    map.reset();
    runQueue();
    forgetMemory();
}

void ImageTilesTest::useServer(MKImageSetProperties properties, const std::string& pattern,
                               const std::shared_ptr<const MKTileSource>& world) {
    // Blocks of the work queue may use it after the test.
    static auto* const disks = new std::vector<std::unique_ptr<MKImageDisk>>;
    disks->push_back(std::make_unique<MKImageDisk>(folder / "cache"));
    useSet(std::make_shared<MKWebImageSet>(MKTileAddress(server->origin() + pattern), std::move(properties),
                                           *disks->back()),
           world);
}

void ImageTilesTest::useSet(const std::shared_ptr<const MKImageSet>& set,
                            const std::shared_ptr<const MKTileSource>& world) {
    map->setTileSource(
        std::make_shared<MKImageTileSource>(MKImageTileSource::Sets{{MKMapTypeStandard, set}}, world ? world : source));
}

void ImageTilesTest::showTile(int zoom, int column, int row) {
    const double side = MKWorldSide / std::exp2(zoom); // map points
    const double scale = window->scale();
    const CGSize size = map->bounds().size;
    map->setRegion(MKCoordinateRegionForMapRect(
        {{column * side, row * side}, {size.width * side / 256 * scale, size.height * side / 256 * scale}}));
}

void ImageTilesTest::framesUntil(const std::function<bool()>& condition) {
    const auto start = std::chrono::steady_clock::now();
    while (!condition()) {
        frame();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        ASSERT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10)) << "it does not come to that";
    }
}

void ImageTilesTest::forgetMemory() {
    MKTileLoader::shared().emptyCache();
}

} // namespace veyra
