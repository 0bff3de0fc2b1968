// The memory that a map takes, however long it is used.
#include "Tests/Platform/MapKit/MapFixture.h"

#include "Platform/MapKit/MKBasemapSource.h"
#include "Platform/MapKit/MKPages.h"
#include "Platform/MapKit/MKTileLoader.h"

#include <chrono>
#include <cstdlib>
#include <malloc.h>
#include <random>

namespace veyra {

namespace {

class MKMapViewMemory : public MapTest {
protected:
    MKMapViewMemory() { map->setTileSource(MKBasemapSource::shared()); }

    /// To so many places, at all zooms, in all map types.
    void fly(int stops) {
        std::uniform_real_distribution<double> latitude(-70, 75), longitude(-180, 180), zoom(0.5, 13);
        for (int i = 0; i < stops; ++i) {
            const double span = 360 * 1.4 / std::exp2(zoom(_random));
            map->setMapType(static_cast<MKMapType>(i % 3));
            map->setRegion({{latitude(_random), longitude(_random)}, {span / 3, span}});
            frames(2); // often it is gone before its tiles have come
            if (i % 3 == 0) {
                settle();
            }
        }
        settle();
    }
    static size_t used() { return mallinfo2().uordblks + mallinfo2().hblkhd + MKPages::heldBytes(); }

private:
    std::mt19937 _random{7};
};

} // namespace

// With VEYRA_LONG_TESTS in the environment the flight takes five minutes, after one that fills the caches.
TEST_F(MKMapViewMemory, DoesNotGrowOnAFlightOnceItsCachesAreFull) {
    using Clock = std::chrono::steady_clock;
    const bool isLong = std::getenv("VEYRA_LONG_TESTS") != nullptr;
    show({500, 400});
    auto start = Clock::now();
    do {
        fly(80);
    } while (isLong && Clock::now() - start < std::chrono::minutes(1));
    const size_t before = used();
    start = Clock::now();
    do {
        fly(60);
        EXPECT_LE(MKTileLoader::shared().cachedBytes(), MKTileLoader::cacheBytes);
    } while (isLong && Clock::now() - start < std::chrono::minutes(5));
    EXPECT_LT(used(), before + (size_t{8} << 20));
}

} // namespace veyra
