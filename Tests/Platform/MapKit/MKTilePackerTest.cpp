// What becomes of tiles, and of what drawing them has left behind, while a map rests.
#include "Tests/Platform/MapKit/MapFixture.h"

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/MapKit/MKBasemapSource.h"
#include "Platform/MapKit/MKPages.h"
#include "Platform/MapKit/MKTileLoader.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <thread>

namespace veyra {

namespace {

/// The built-in world without its names, which writes down what it draws and when it rests.
class WatchedWorld final : public MKTileSource {
public:
    std::shared_ptr<const MKTile> drawTile(const MKTileKey& key) const override {
        auto tile = MKBasemapSource::shared()->drawTile(key);
        if (tile->picture()) {
            const std::lock_guard guard(_mutex);
            _tiles.push_back(tile);
        }
        return tile;
    }
    MKTileColor backgroundColor(MKMapType mapType) const override {
        return MKBasemapSource::shared()->backgroundColor(mapType);
    }
    void rest() const override { ++rests; }

    /// Those with a picture, while they live.
    std::vector<std::shared_ptr<const MKTile>> tiles() const {
        std::vector<std::shared_ptr<const MKTile>> living;
        const std::lock_guard guard(_mutex);
        for (const auto& weak : _tiles) {
            if (auto tile = weak.lock()) {
                living.push_back(std::move(tile));
            }
        }
        return living;
    }
    size_t drawn() const {
        const std::lock_guard guard(_mutex);
        return _tiles.size();
    }
    long unpacked() const {
        return std::ranges::count_if(tiles(), [](const auto& tile) { return tile->picture()->hasPixels(); });
    }
    mutable std::atomic<int> rests{0};

private:
    mutable std::mutex _mutex;
    mutable std::vector<std::weak_ptr<const MKTile>> _tiles;
};

class MKTilePackerTest : public MapTest {
protected:
    MKTilePackerTest() : world(std::make_shared<WatchedWorld>()) {
        MKTileLoader::shared().emptyCache();
        map->setTileSource(world);
    }
    ~MKTilePackerTest() override { MKTileLoader::shared().emptyCache(); }

    /// Lets the main queue turn until something holds; fails the test after ten seconds.
    void waitUntil(const std::function<bool()>& holds) {
        const auto start = std::chrono::steady_clock::now();
        while (!holds()) {
            runQueue();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            ASSERT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
        }
    }
    void showEurope() {
        show({1024, 768});
        go(europe);
    }
    void go(CLLocationCoordinate2D center) {
        map->setRegion({center, {20, 30}});
        settle();
    }

    // On one latitude, so that the scale stays and with it the tiles.
    static constexpr CLLocationCoordinate2D europe{48, 10}, nearby{48, 13}, farAway{-25, 133};
    std::shared_ptr<WatchedWorld> world;
};

} // namespace

TEST_F(MKTilePackerTest, AMapThatHasRestedLooksAsBeforeWhenItMoves) {
    const auto hasRested = [&] { return world->unpacked() == 0; };
    showEurope();
    go(nearby);
    const auto picturedNearby = pixels();
    waitUntil(hasRested);
    go(europe);
    const auto pictured = pixels();
    waitUntil(hasRested);
    EXPECT_EQ(pixels(), pictured);
    const size_t drawn = world->drawn();
    go(nearby);
    EXPECT_GT(world->unpacked(), 3);
    EXPECT_EQ(pixels(), picturedNearby);
    go(europe);
    EXPECT_EQ(pixels(), pictured);
    EXPECT_EQ(world->drawn(), drawn) << "the tiles are those that rested";
}

TEST_F(MKTilePackerTest, TheMemoryOfTilesFallsWhileAMapRests) {
    constexpr size_t tileBytes = size_t{4} * MKTileKey::side * MKTileKey::side;
    const size_t before = MKPages::heldBytes();
    showEurope();
    const size_t count = world->tiles().size();
    ASSERT_GE(count, 6u);
    EXPECT_GE(MKPages::heldBytes(), before + count * tileBytes);
    EXPECT_GE(MKTileLoader::shared().cachedBytes(), count * tileBytes);
    waitUntil([&] { return MKPages::heldBytes() <= before && world->unpacked() == 0; });
    EXPECT_LT(MKTileLoader::shared().cachedBytes(), count * tileBytes / 6);
}

TEST_F(MKTilePackerTest, WhatIsDrawnNowAndThenStaysAsItIsAndTheRestIsPackedOnce) {
    showEurope();
    std::vector<std::weak_ptr<cairo_surface_t>> surfaces;
    for (const auto& tile : world->tiles()) {
        surfaces.push_back(tile->picture()->surface());
    }
    const auto living = [&] {
        return std::ranges::count_if(surfaces, [](const auto& surface) { return !surface.expired(); });
    };
    int drawings = 0;
    DispatchTimer clock;
    std::function<void()> drawCorner = [&] {
        ++drawings;
        map->setNeedsDisplayInRect({{512, 384}, {1, 1}});
        frame();
        clock.start(dispatch_get_main_queue(), 0.2, drawCorner);
    };
    drawCorner();
    waitUntil([&] { return living() == 1 && world->unpacked() == 1; });
    const int soFar = drawings;
    waitUntil([&] { return drawings == soFar + 11; }); // longer than the time after which it would be packed
    EXPECT_EQ(living(), 1) << "its pixels are those that were drawn";
    EXPECT_EQ(world->unpacked(), 1);
    clock.cancel();
    waitUntil([&] { return living() == 0 && world->unpacked() == 0; });
}

TEST_F(MKTilePackerTest, APhotographKeepsItsPixels) {
    using Packing = MKTilePicture::Packing;
    map->setMapType(MKMapTypeSatellite);
    showEurope();
    const auto pictured = pixels();
    const auto count = [&](Packing packing) {
        return std::ranges::count(world->tiles(), packing, [](const auto& tile) { return tile->picture()->packing(); });
    };
    waitUntil([&] { return count(Packing::NotTried) == 0; });
    EXPECT_GT(count(Packing::Useless), 5);
    waitUntil([&] { return world->unpacked() == count(Packing::Useless); });
    map->setNeedsDisplay();
    settle();
    EXPECT_EQ(pixels(), pictured);
}

TEST_F(MKTilePackerTest, ASourceRestsOnceAfterItsTiles) {
    showEurope();
    EXPECT_EQ(world->rests, 0);
    waitUntil([&] { return world->rests > 0; });
    EXPECT_EQ(world->unpacked(), 0) << "pictures are packed first";
    go(farAway);
    waitUntil([&] { return world->rests > 1; });
    EXPECT_EQ(world->rests, 2);
}

TEST(MKBasemapCells, AreUnpackedAnewOnceTheyWereLetGo) {
    const BasemapFile& file = builtInBasemap();
    MKBasemapCells cells(size_t{1} << 20);
    const BasemapCellId id = file.cellsMeeting(0, 0, 0, 1 << 28, 1 << 28).front();
    const auto first = cells.cell(file, id);
    EXPECT_EQ(cells.cell(file, id), first);
    cells.removeAll();
    const auto second = cells.cell(file, id);
    EXPECT_NE(second, first);
    EXPECT_EQ(second->byteSize(), first->byteSize());
    EXPECT_EQ(cells.cell(file, id), second);
}

} // namespace veyra
