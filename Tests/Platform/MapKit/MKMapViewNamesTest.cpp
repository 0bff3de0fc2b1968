// The names on the map, broken files, and the memory that the built-in world takes.
#include "Tests/Platform/Foundation/CapturedLog.h"
#include "Tests/Platform/MapKit/MapFixture.h"

#include "Platform/MapKit/Basemap/BasemapNames.h"
#include "Platform/MapKit/MKBasemapSource.h"
#include "Platform/MapKit/MKLabelArt.h"

#include <cairo.h>
#include <malloc.h>

#include <cstring>

namespace veyra {

namespace {

class MKMapViewNames : public MapTest {
protected:
    MKMapViewNames() { MKLabelWriter::setFontFamily("DejaVu Sans"); }

    size_t differenceMadeByNames() { return differenceMadeByNames(window->bounds()); }
    /// Of the pixels within some points.
    size_t differenceMadeByNames(const CGRect& area) {
        map->setTileSource(std::make_shared<MKBasemapSource>(&builtInBasemap, &builtInImagery, &noNames));
        settle();
        const std::vector<uint32_t> without = pixels();
        map->setTileSource(MKBasemapSource::shared());
        settle();
        const std::vector<uint32_t> with = pixels();
        const auto width = static_cast<size_t>(window->pixelWidth());
        size_t different = 0;
        for (size_t i = 0; i < with.size(); ++i) {
            const auto x = static_cast<double>(i % width), y = static_cast<double>(i / width);
            const bool isInside = x >= area.origin.x && x < area.origin.x + area.size.width && y >= area.origin.y &&
                                  y < area.origin.y + area.size.height;
            different += isInside && with[i] != without[i];
        }
        return different;
    }
    static const BasemapNames& noNames() { throw BasemapError("small.vbn: byte 8: the checksum is wrong"); }
};

} // namespace

TEST_F(MKMapViewNames, AreOnTheStandardAndTheHybridMapButNotOnTheSatellites) {
    const CapturedLog log;
    show({400, 300});
    map->setRegion({{48, 12}, {20, 20}});
    EXPECT_GT(differenceMadeByNames(), 1000u);
    map->setMapType(MKMapTypeHybrid);
    EXPECT_GT(differenceMadeByNames(), 1000u);
    map->setMapType(MKMapTypeSatellite);
    EXPECT_EQ(differenceMadeByNames(), 0u);
}

TEST_F(MKMapViewNames, KeepOutOfTheScaleBarAndTheAttribution) {
    const CapturedLog log;
    show({400, 300});
    map->setShowsAttribution(true);
    const CGRect attribution = window->caption().frame, scaleBar{{6, 270}, {100, 24}};
    size_t under = 0;
    for (const double longitude : {2.0, 9.0, 13.0, 21.0}) {
        map->setRegion({{48, longitude}, {12, 12}});
        map->setShowsScale(false);
        map->setShowsAttribution(false);
        under += differenceMadeByNames(scaleBar) + differenceMadeByNames(attribution);
        map->setShowsScale(true);
        map->setShowsAttribution(true);
        EXPECT_EQ(differenceMadeByNames(scaleBar), 0u) << longitude;
        EXPECT_EQ(differenceMadeByNames(attribution), 0u) << longitude;
    }
    EXPECT_GT(under, 1000u) << "without them there are names";
}

TEST_F(MKMapViewNames, ThatCannotBeReadAreLoggedOnceAndTheMapIsDrawnWithoutThem) {
    const CapturedLog log;
    map->setTileSource(std::make_shared<MKBasemapSource>(&builtInBasemap, &builtInImagery, &noNames));
    show({400, 300});
    map->setCenterCoordinate({48, 12});
    settle();
    map->setRegion({{48, 12}, {5, 5}});
    settle();
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"message: MKMapView: the names on the map cannot be drawn: "
                                                     "small.vbn: byte 8: the checksum is wrong"}));
    EXPECT_NE(pixelAt(200, 150), 0xffffffu);
}

TEST_F(MKMapViewNames, ThatAreNotDrawnYetKeepNoMapFromRestingThatShowsNone) {
    map->setTileSource(MKBasemapSource::shared());
    show({1200, 900}, 2.5);
    map->setRegion({{48, 12}, {20, 20}});
    frame(); // there is not time enough for all names of a scale that was never drawn
    map->setMapType(MKMapTypeSatellite);
    settle();
    EXPECT_TRUE(window->isIdle());
}

TEST_F(MKMapViewNames, StayWhereTheyAreUnderTheFingerThatMovesTheMap) {
    map->setTileSource(MKBasemapSource::shared());
    show({400, 300});
    map->setRegion({{48, 12}, {20, 20}});
    settle();
    const std::vector<uint32_t> before = pixels();
    touch(1, UITouchPhase::Began, {200, 150}, UITouchType::IndirectPointer);
    touch(1, UITouchPhase::Moved, {220, 150}, UITouchType::IndirectPointer);
    touch(1, UITouchPhase::Moved, {240, 150}, UITouchType::IndirectPointer);
    // The map does not rest under the finger, but all of it comes to be drawn.
    for (int i = 0; i < 300; ++i) {
        frame();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const std::vector<uint32_t> after = pixels();
    // All that was to be seen before and after has moved by the same number of pixels, whatever the threshold took.
    size_t best = before.size();
    for (size_t moved = 1; moved <= 40; ++moved) {
        size_t different = 0;
        for (size_t y = 0; y < 300; ++y) {
            for (size_t x = moved; x < 400; ++x) {
                different += after[y * 400 + x] != before[y * 400 + x - moved];
            }
        }
        best = std::min(best, different);
    }
    EXPECT_EQ(best, 0u);
    touch(1, UITouchPhase::Ended, {240, 150}, UITouchType::IndirectPointer);
}

TEST_F(MKMapViewNames, NeedNoMorePicturesThanTheirCacheHolds) {
    map->setTileSource(MKBasemapSource::shared());
    show({800, 600}, 2);
    for (double longitude = -180; longitude < 180; longitude += 12) {
        map->setRegion({{45, longitude}, {12, 12}});
        settle();
    }
    EXPECT_LE(MKLabelArtCache::shared().byteSize(), MKLabelArtCache::byteLimit + (size_t{2} << 20));
}

TEST_F(MKMapViewNames, CostAFurtherMapOfTheSamePlaceLittleMemory) {
    map->setTileSource(MKBasemapSource::shared());
    show({400, 300});
    map->setRegion({{48, 12}, {20, 20}});
    settle();
    const auto used = [] { return mallinfo2().uordblks + mallinfo2().hblkhd; };
    const size_t before = used();
    struct Further {
        std::shared_ptr<UIWindow> window;
        std::shared_ptr<MKMapView> map;
    };
    std::vector<Further> maps;
    constexpr size_t count = 8;
    for (size_t i = 0; i < count; ++i) {
        Further further{UIWindow::make(), UIView::make<MKMapView>({{0, 0}, {400, 300}})};
        further.window->setSize({400, 300}, 1);
        further.window->addSubview(further.map);
        further.map->setRegion({{48, 12}, {20, 20}});
        while (!further.window->isIdle()) {
            further.window->drawFrame(now += 1.0 / 60);
            runQueue();
        }
        maps.push_back(std::move(further));
    }
    EXPECT_LT(used(), before + count * (size_t{2} << 20));
}

TEST(BuiltInSource, SaysWhichFileAndWhichTileIsBroken) {
    // One level of one tile, whose bytes are no picture.
    static std::vector<std::byte> file = [] {
        const auto original = builtInImagery().tile(0, 0, 0);
        std::vector<std::byte> bytes(original.begin(), original.end());
        std::fill(bytes.begin() + 200, bytes.end(), std::byte{0});
        bytes[0] = std::byte{'x'};
        return bytes;
    }();
    static std::vector<std::byte> pictures = [] {
        const unsigned char head[] = {0x89, 'V', 'B', 'I', '\r', '\n', 0x1a, '\n', 0, 0, 0, 0, 1, 0, 1, 0, 0, 1, 0, 0};
        std::vector<std::byte> bytes(36);
        std::memcpy(bytes.data(), head, sizeof head);
        const auto put = [&](size_t at, size_t value) {
            for (size_t i = 0; i < 4; ++i) {
                bytes[at + i] = static_cast<std::byte>(value >> (8 * i));
            }
        };
        put(20, 36 + file.size());
        put(28, 36);
        put(32, file.size());
        uint32_t crc = 0xffffffff;
        for (size_t i = 12; i < bytes.size(); ++i) {
            crc ^= std::to_integer<uint32_t>(bytes[i]);
            for (int bit = 0; bit < 8; ++bit) {
                crc = crc >> 1 ^ (0xedb88320 & (0 - (crc & 1)));
            }
        }
        put(8, ~crc);
        bytes.resize(36 + file.size());
        std::copy(file.begin(), file.end(), bytes.begin() + 36);
        return bytes;
    }();
    const auto open = []() -> const BasemapImagery& {
        static const BasemapImagery imagery(pictures, "broken.vbi");
        return imagery;
    };
    const MKBasemapSource source(&builtInBasemap, open, &builtInNames);
    MKTileKey key;
    key.mapType = MKMapTypeSatellite;
    key.scale = MKTileKey::side / 268435456.0;
    try {
        source.drawTile(key);
        ADD_FAILURE() << "the tile was drawn";
    } catch (const BasemapError& error) {
        EXPECT_EQ(std::string(error.what()).rfind("broken.vbi: tile 0/0/0 at byte 36: ", 0), 0u) << error.what();
    }
}

} // namespace veyra
