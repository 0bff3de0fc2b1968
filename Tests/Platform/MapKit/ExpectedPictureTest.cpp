// The built-in world as it is expected to look, picture by picture.
#include "Tests/Platform/MapKit/MapFixture.h"
#include "Tests/Support/Picture.h"

#include "Platform/MapKit/MKBasemapSource.h"
#include "Platform/MapKit/MKLabelWriter.h"

#include <cmath>

namespace veyra {

namespace {

struct Picture {
    const char* name;
    CGSize size; // pixels
    double zoom; // the world is 256 * 2^zoom points wide
    CLLocationCoordinate2D center;
    double scale = 1;
    MKMapType type = MKMapTypeStandard;
    UIUserInterfaceStyle style = UIUserInterfaceStyleLight;
};

void PrintTo(const Picture& picture, std::ostream* out) {
    *out << picture.name;
}

class ExpectedPicture : public MapTest, public testing::WithParamInterface<Picture> {
protected:
    ExpectedPicture() { map->setTileSource(MKBasemapSource::shared()); }
};

constexpr CGSize large{768, 512}, usual{512, 384};
constexpr UIUserInterfaceStyle dark = UIUserInterfaceStyleDark;

const Picture pictures[] = {
    {"world", large, 1, {20, 10}},
    {"world-across-the-antimeridian", large, 1, {20, 180}},
    {"world-dark", usual, 2, {25, 60}, 1, MKMapTypeStandard, dark},
    {"world-satellite", usual, 1, {20, 10}, 1, MKMapTypeSatellite},
    {"europe", large, 4, {50, 12}},
    {"africa-hybrid", usual, 3, {2, 22}, 1, MKMapTypeHybrid},
    {"alps-fractional-zoom", usual, 6.37, {46.5, 9.3}},
    {"aegean-scale-2", large, 6, {37.9, 25.1}, 2},
    {"kashmir-dark", usual, 6, {34, 75.5}, 1, MKMapTypeStandard, dark},
    {"fiji-across-the-antimeridian", usual, 6, {-17.4, 179.6}},
    {"antarctica", usual, 3, {-78, 40}},
    {"great-lakes-satellite", usual, 4.6, {44.5, -84}, 1, MKMapTypeSatellite},
    {"japan-hybrid", usual, 5, {37, 138}, 1, MKMapTypeHybrid},
    {"kenya-far-in", usual, 8, {-1.3, 36.8}},
    {"venice-satellite-far-in", usual, 10, {45.4, 12.4}, 1, MKMapTypeSatellite},
    {"svalbard-hybrid-scale-2", usual, 4, {78.5, 16}, 2, MKMapTypeHybrid},
};

} // namespace

TEST_P(ExpectedPicture, IsDrawn) {
    const Picture& picture = GetParam();
    MKLabelWriter::setFontFamily("DejaVu Sans");
    const CGSize points{picture.size.width / picture.scale, picture.size.height / picture.scale};
    show(points, picture.scale);
    window->setUserInterfaceStyle(picture.style);
    map->setMapType(picture.type);
    map->setRegion({picture.center, {0.0001, 360 * points.width / (256 * std::exp2(picture.zoom))}});
    settle();
    EXPECT_TRUE(looksLike(picture.name, window->surface()));
}

INSTANTIATE_TEST_SUITE_P(BuiltInWorld, ExpectedPicture, testing::ValuesIn(pictures));

} // namespace veyra
