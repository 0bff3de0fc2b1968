// Which images a map asks for, and where it shows them.
#include "Platform/MapKit/ImageTiles/MKImageLoader.h"
#include "Platform/MapKit/MKBasemapSource.h"
#include "Platform/MapKit/MKLabelWriter.h"
#include "Platform/MapKit/MKTileLoader.h"
#include "Tests/Platform/MapKit/ImageTiles/ImageTilesFixture.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <malloc.h>
#include <random>
#include <set>

namespace veyra {

namespace {

using test::coloredTile;
using test::TileAnswer;
using test::tileColor;
using test::TileRequest;

class ImageTilesShown : public ImageTilesTest {};

constexpr uint32_t world = 0x00ff00; // the colour of the source in place of the world

} // namespace

TEST_F(ImageTilesShown, EveryImageIsShownAtItsPlace) {
    useServer();
    show({512, 512});
    showTile(4, 6, 5);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFinish"}));
    for (int row = 0; row < 2; ++row) {
        for (int column = 0; column < 2; ++column) {
            const uint32_t expected = tileColor(4, 6 + column, 5 + row);
            EXPECT_EQ(pixelAt(256 * column + 2, 256 * row + 2), expected);
            EXPECT_EQ(pixelAt(256 * column + 253, 256 * row + 253), expected);
        }
    }
}

TEST_F(ImageTilesShown, TheNearestZoomIsTakenBetweenZooms) {
    useServer();
    show({512, 512});
    server->forgetRequests();
    const double side = MKWorldSide / 32;
    map->setRegion(MKCoordinateRegionForMapRect({{6 * side, 5 * side}, {3 * side, 3 * side}})); // zoom 5 at 0.67
    settle();
    EXPECT_EQ(server->countOfZoom(5), 0u);
    EXPECT_GT(server->countOfZoom(4), 0u);
    map->setRegion(MKCoordinateRegionForMapRect({{6 * side, 5 * side}, {2.6 * side, 2.6 * side}})); // 0.77
    settle();
    EXPECT_GT(server->countOfZoom(5), 0u);
}

TEST_F(ImageTilesShown, ADenseScreenGetsTheNextZoomsImages) {
    useServer();
    show({256, 256}, 2);
    showTile(4, 6, 5);
    settle();
    EXPECT_EQ(pixelAt(2, 2), tileColor(4, 6, 5)) << "zoom 4 in device pixels is zoom 3 in points";
    EXPECT_EQ(pixelAt(509, 509), tileColor(4, 7, 6));
}

TEST_F(ImageTilesShown, ADenseScreenGetsDoubledImagesWhereThereAreSome) {
    server->setHandler([](const TileRequest& request) {
        TileAnswer answer;
        answer.body = test::pictureOf(tileColor(request.zoom, request.column, request.row), 512);
        return answer;
    });
    useServer({}, "/{z}/{x}/{y}{r}.png");
    show({256, 256}, 2);
    showTile(4, 6, 6);
    settle();
    EXPECT_EQ(pixelAt(2, 2), tileColor(3, 3, 3));
    EXPECT_EQ(pixelAt(509, 509), tileColor(3, 3, 3));
    for (const TileRequest& request : server->requests()) {
        EXPECT_TRUE(request.path.ends_with("@2x.png")) << request.path;
    }
}

TEST_F(ImageTilesShown, LargeTilesAreThoseOfALowerZoom) {
    server->setHandler([](const TileRequest& request) {
        TileAnswer answer;
        answer.body = test::pictureOf(tileColor(request.zoom, request.column, request.row), 512, "jpeg");
        return answer;
    });
    useServer({.tileSize = 512, .attribution = {}});
    show({512, 512});
    showTile(4, 6, 6);
    settle();
    EXPECT_NEAR(pixelAt(2, 2) & 255, tileColor(3, 3, 3) & 255, 3);
    EXPECT_NEAR(pixelAt(509, 509) & 255, tileColor(3, 3, 3) & 255, 3);
}

TEST_F(ImageTilesShown, BeyondTheHighestZoomItsImagesAreShownLarger) {
    useServer({.maximumZoom = 3, .attribution = {}});
    show({512, 512});
    showTile(6, 27, 22);
    settle();
    EXPECT_EQ(server->countOfZoom(4) + server->countOfZoom(5) + server->countOfZoom(6), 0u);
    EXPECT_EQ(pixelAt(256, 256), tileColor(3, 3, 2));
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFinish"}));
}

TEST_F(ImageTilesShown, ImagesMergeSmoothlyBeyondTheHighestZoom) {
    useServer({.maximumZoom = 3, .attribution = {}});
    show({512, 512});
    showTile(6, 23, 20); // the edge of two images in the middle
    settle();
    const auto red = [&](int x) { return static_cast<int>(pixelAt(x, 100) >> 8 & 255); };
    const int left = static_cast<int>(tileColor(3, 2, 2) >> 8 & 255),
              right = static_cast<int>(tileColor(3, 3, 2) >> 8 & 255);
    EXPECT_EQ(red(200), left);
    EXPECT_EQ(red(300), right);
    int steps = 0;
    for (int x = 200; x < 300; ++x) {
        steps += red(x) != red(x + 1);
        EXPECT_LT(std::abs(red(x + 1) - red(x)), std::abs(right - left) / 3) << x;
    }
    EXPECT_GE(steps, 5);
}

TEST_F(ImageTilesShown, BelowTheLowestZoomTheWorldIsShown) {
    useServer({.minimumZoom = 5, .attribution = {}});
    show({512, 512});
    EXPECT_EQ(server->count(), 0u);
    EXPECT_EQ(pixelAt(256, 256), world);
    showTile(5, 12, 10);
    settle();
    EXPECT_EQ(pixelAt(2, 2), tileColor(5, 12, 10));
}

TEST_F(ImageTilesShown, OtherMapTypesAreThoseOfTheWorld) {
    useServer();
    map->setMapType(MKMapTypeSatellite);
    show({512, 512});
    showTile(4, 6, 5);
    settle();
    EXPECT_EQ(server->count(), 0u);
    EXPECT_EQ(pixelAt(256, 256), world);
}

TEST_F(ImageTilesShown, TheWorldShowsThroughTransparentImages) {
    server->setHandler([](const TileRequest&) {
        GdkPixbuf* const pixels = gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, 256, 256);
        gdk_pixbuf_fill(pixels, 0xff000080);
        gchar* bytes = nullptr;
        gsize length = 0;
        gdk_pixbuf_save_to_buffer(pixels, &bytes, &length, "png", nullptr, nullptr);
        TileAnswer answer;
        answer.body.assign(bytes, length);
        g_free(bytes);
        g_object_unref(pixels);
        return answer;
    });
    useServer();
    show({512, 512});
    EXPECT_NEAR(pixelAt(256, 256) >> 16 & 255, 128, 2);
    EXPECT_NEAR(pixelAt(256, 256) >> 8 & 255, 127, 2);
}

TEST_F(ImageTilesShown, AParentIsShownUntilTheImageComes) {
    useServer();
    show({512, 512});
    showTile(4, 6, 4);
    settle();
    server->setHandler([](const TileRequest& request) {
        TileAnswer answer = coloredTile(request);
        answer.delay = request.zoom == 5 ? 1000 : 0;
        return answer;
    });
    showTile(5, 12, 8);
    framesUntil([&] { return server->countOfZoom(5) == 6; });
    EXPECT_FALSE(map->isIdle());
    for (const auto& [x, y] : {std::pair{10, 10}, {500, 10}, {10, 500}, {500, 500}}) {
        EXPECT_EQ(pixelAt(x, y), tileColor(4, 6, 4));
    }
    EXPECT_EQ(delegate->loadingCalls().back(), "willStart");
}

TEST_F(ImageTilesShown, ImagesThatHaveComeAreShownAmongThoseThatHaveNot) {
    useServer();
    show({512, 512});
    showTile(4, 6, 4);
    settle();
    server->setHandler([](const TileRequest& request) {
        TileAnswer answer = coloredTile(request);
        answer.delay = request.zoom == 5 && request.column != 12 ? 1000 : 0;
        return answer;
    });
    showTile(5, 12, 8);
    framesUntil([&] { return pixelAt(10, 300) == tileColor(5, 12, 9) && pixelAt(10, 10) == tileColor(5, 12, 8); });
    EXPECT_EQ(pixelAt(300, 10), tileColor(4, 6, 4));
}

TEST_F(ImageTilesShown, TheWorldHasItsNamesWhileItIsAllThatIsSeen) {
    MKLabelWriter::setFontFamily("DejaVu Sans");
    std::atomic<bool> isDown{true};
    server->setHandler([&](const TileRequest& request) {
        return isDown ? TileAnswer{.status = "503 Service Unavailable", .body = {}, .fields = {}}
                      : coloredTile(request);
    });
    useServer({.maximumZoom = 0, .attribution = {}}, "/{z}/{x}/{y}.png", MKBasemapSource::shared());
    show({400, 300});
    map->setRegion({{48, 12}, {20, 20}});
    settle();
    const std::vector<uint32_t> shown = pixels();
    isDown = false;
    framesUntil([&] { return pixelAt(200, 150) == tileColor(0, 0, 0); });
    settle();
    const std::vector<uint32_t> images = pixels();
    EXPECT_TRUE(std::all_of(images.begin(), images.end(), [](uint32_t pixel) { return pixel == tileColor(0, 0, 0); }))
        << "images bring their own names";
    map->setTileSource(MKBasemapSource::shared());
    settle();
    EXPECT_EQ(shown, pixels());
}

// With VEYRA_LONG_TESTS in the environment the flight takes five minutes.
TEST_F(ImageTilesShown, MemoryDoesNotGrowOnAFlightOnceItsCachesAreFull) {
    useServer();
    show({512, 512});
    std::mt19937 random(7);
    std::uniform_real_distribution<double> latitude(-70, 70), longitude(-180, 180), zoom(1, 14);
    const auto fly = [&](int stops) {
        for (int i = 0; i < stops; ++i) {
            const double span = 360 / std::exp2(zoom(random));
            map->setRegion({{latitude(random), longitude(random)}, {span / 2, span}});
            frames(2); // often it is gone before its images have come
            if (i % 3 == 0) {
                settle();
            }
            EXPECT_LE(MKTileLoader::shared().cachedBytes(), MKTileLoader::cacheBytes);
            EXPECT_LE(MKImageLoader::shared().byteSize(), MKImageLoader::cacheBytes + (size_t{32} << 20));
        }
        settle();
        server->forgetRequests();
    };
    const auto used = [] { return mallinfo2().uordblks + mallinfo2().hblkhd; };
    fly(80);
    const size_t before = used();
    const auto start = std::chrono::steady_clock::now();
    do {
        fly(60);
    } while (std::getenv("VEYRA_LONG_TESTS") && std::chrono::steady_clock::now() - start < std::chrono::minutes(5));
    EXPECT_LT(used(), before + (size_t{8} << 20));
}

} // namespace veyra
