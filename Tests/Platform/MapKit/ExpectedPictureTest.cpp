// The built-in world as it is expected to look, picture by picture.
#include "Tests/Platform/MapKit/MapFixture.h"
#include "Tests/Support/Picture.h"

#include "Platform/MapKit/MKBasemapSource.h"

namespace veyra {

namespace {

struct Picture {
    const char* name;
    MKCoordinateRegion region;
    double scale = 1;
    MKMapType type = MKMapTypeStandard;
};

void PrintTo(const Picture& picture, std::ostream* out) {
    *out << picture.name;
}

class ExpectedPicture : public MapTest, public testing::WithParamInterface<Picture> {
protected:
    ExpectedPicture() { map->setTileSource(MKBasemapSource::shared()); }
};

const Picture pictures[] = {
    {"world", {{0, 0}, {180, 360}}},
    {"world-across-the-antimeridian", {{0, 180}, {180, 360}}},
    {"europe", {{50, 12}, {32, 32}}},
    {"alps-fractional-zoom", {{46.5, 9.3}, {5.7, 5.7}}},
    {"aegean-scale-2", {{37.9, 25.1}, {3.1, 3.1}}, 2},
    {"fiji-across-the-antimeridian", {{-17.4, 179.6}, {5, 5}}},
    {"antarctica", {{-78, 40}, {12, 60}}},
    {"great-lakes-satellite", {{44.5, -84}, {12, 12}}, 1, MKMapTypeSatellite},
    {"japan-hybrid", {{37, 138}, {14, 14}}, 1, MKMapTypeHybrid},
};

} // namespace

TEST_P(ExpectedPicture, IsDrawn) {
    const Picture& picture = GetParam();
    const double side = 512 / picture.scale; // each picture has 512 × 512 pixels
    show({side, side}, picture.scale);
    map->setMapType(picture.type);
    map->setRegion(picture.region);
    settle();
    EXPECT_TRUE(looksLike(picture.name, window->surface()));
}

INSTANTIATE_TEST_SUITE_P(BuiltInWorld, ExpectedPicture, testing::ValuesIn(pictures));

} // namespace veyra
