// What the built-in world looks like on the map, by colours at places.
#include "Tests/Platform/MapKit/MapFixture.h"

#include "Platform/MapKit/MKBasemapSource.h"
#include "Platform/MapKit/MKBasemapStyle.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace veyra {

namespace {

// The built-in world without its names, which would cover what is looked at.
class NamelessWorld final : public MKTileSource {
public:
    std::shared_ptr<const MKTile> drawTile(const MKTileKey& key) const override {
        return MKBasemapSource::shared()->drawTile(key);
    }
    MKTileColor backgroundColor(MKMapType mapType) const override {
        return MKBasemapSource::shared()->backgroundColor(mapType);
    }
    bool hasDarkPicture() const override { return true; }
};

class MKMapViewPicture : public MapTest {
protected:
    MKMapViewPicture() { map->setTileSource(std::make_shared<NamelessWorld>()); }
    const MKBasemapStyle& style = MKBasemapStyle::forMapType(MKMapTypeStandard);
};

struct Place {
    const char* name;
    CLLocationCoordinate2D coordinate;
    bool isLand;
};
const Place places[] = {
    {"Congo basin", {1, 22}, true},         {"Sahara", {22, 5}, true},
    {"Kansas", {38.5, -98.5}, true},        {"Siberia", {63, 110}, true},
    {"Australia", {-25, 133}, true},        {"Antarctica", {-80, 60}, true},
    {"mid Pacific", {5, -150}, false},      {"mid Atlantic", {30, -45}, false},
    {"Indian Ocean", {-30, 80}, false},     {"Mediterranean", {34.5, 20}, false},
    {"Lake Victoria", {-1.4, 32.9}, false},
};

} // namespace

TEST_F(MKMapViewPicture, ShowsLandAndWaterWhereTheyAreAtEveryZoom) {
    show({800, 600});
    for (const Place& place : places) {
        for (const double span : {100.0, 20.0, 3.0, 0.37, 0.001}) {
            map->setRegion({place.coordinate, {span, span}});
            settle();
            EXPECT_EQ(pixelAt(place.coordinate), place.isLand ? style.land : style.sea)
                << place.name << " at a span of " << span;
        }
    }
}

TEST_F(MKMapViewPicture, LinesWithinACountryEndAtTheShoresOfLakes) {
    show({512, 384});
    map->setRegion({{-1.6, 32.5}, {0.0001, 360 * 512 / (256 * std::exp2(6))}});
    settle();
    for (double latitude = -1.9; latitude < -1.25; latitude += 0.02) { // three provinces meet in Lake Victoria
        for (double longitude = 32.2; longitude < 32.9; longitude += 0.02) {
            EXPECT_EQ(pixelAt({latitude, longitude}), style.lake) << latitude << ", " << longitude;
        }
    }
}

TEST_F(MKMapViewPicture, ShowsBothSidesOfTheAntimeridian) {
    show({800, 600});
    map->setCenterCoordinate({0, 180});
    settle();
    // One world is as wide as the view: its copies meet in the middle, Africa left of it, South America right.
    const double world = 800;
    const auto x = [&](double longitude) { return static_cast<int>(400 + (longitude - 180) / 360 * world); };
    EXPECT_EQ(pixelAt(x(22), 297), style.land);
    EXPECT_EQ(pixelAt(x(180), 297), style.sea);
    EXPECT_EQ(pixelAt(x(360 - 60), 310), style.land); // Amazon
    EXPECT_EQ(pixelAt(x(133), 360), style.land);      // Australia
}

TEST_F(MKMapViewPicture, HasNoSeamInTheLandAtTheAntimeridian) {
    show({800, 600});
    for (const double span : {30.0, 9.3, 4.1}) {
        map->setRegion({{67.3, 180}, {0.1, span}}); // Chukotka runs across it
        settle();
        for (int column = 380; column < 420; ++column) {
            EXPECT_EQ(pixelAt(column, 300), style.land) << column << " at a span of " << span;
        }
    }
}

TEST_F(MKMapViewPicture, HasNoSeamInTheSeaWhereTheBaseMapIsCut) {
    show({1024, 768});
    map->setRegion(
        {{46.5, 9}, {0.1, 90}}); // the cells' edge at 22.5 degrees east runs through the Baltic at column 665.6
    settle();
    for (int row = 134; row < 140; ++row) {
        for (int column = 663; column < 671; ++column) {
            EXPECT_EQ(pixelAt(column, row), style.sea) << column << ", " << row;
        }
    }
}

TEST_F(MKMapViewPicture, IsTheSameWhetherPannedToOrSetAtOnce) {
    show({400, 300}, 2);
    map->setRegion({{45, 9}, {3, 3}});
    settle();
    key("ArrowRight");
    frames(30);
    settle();
    std::vector<uint32_t> panned;
    for (int y = 0; y < 600; ++y) {
        for (int x = 0; x < 800; ++x) {
            panned.push_back(pixelAt(x, y));
        }
    }
    const MKCoordinateRegion region = map->region();
    map->setCenterCoordinate({-30, -60});
    settle();
    map->setCenterCoordinate(region.center);
    settle();
    size_t different = 0;
    for (size_t i = 0; i < panned.size(); ++i) {
        different += panned[i] != pixelAt(static_cast<int>(i % 800), static_cast<int>(i / 800));
    }
    EXPECT_EQ(different, 0u);
}

TEST_F(MKMapViewPicture, TheStandardMapHasOtherColoursInTheDark) {
    show({400, 300});
    EXPECT_EQ(pixelAt({22, 5}), style.land);
    window->setUserInterfaceStyle(UIUserInterfaceStyleDark);
    settle();
    const MKBasemapStyle& dark = MKBasemapStyle::forMapType(MKMapTypeStandard, UIUserInterfaceStyleDark);
    EXPECT_NE(dark.land, style.land);
    EXPECT_EQ(pixelAt({22, 5}), dark.land);
    EXPECT_EQ(pixelAt({5, -150}), dark.sea);
    window->setUserInterfaceStyle(UIUserInterfaceStyleUnspecified);
    settle();
    EXPECT_EQ(pixelAt({22, 5}), style.land);
}

TEST_F(MKMapViewPicture, SatelliteAndHybridShowThePlanetFromAbove) {
    show({400, 300});
    for (const MKMapType type : {MKMapTypeSatellite, MKMapTypeHybrid}) {
        map->setMapType(type);
        settle();
        const auto part = [](uint32_t color, int shift) { return static_cast<int>(color >> shift & 255); };
        const uint32_t sahara = pixelAt({22, 5}), pacific = pixelAt({5, -150}), greenland = pixelAt({73, -40}),
                       congo = pixelAt({-2, 22});
        EXPECT_GT(part(sahara, 16), 170);
        EXPECT_GT(part(sahara, 16), part(sahara, 0) + 40);
        EXPECT_LT(part(pacific, 16), 60);
        EXPECT_GT(part(pacific, 0), part(pacific, 16) + 20);
        EXPECT_GT(std::min({part(greenland, 16), part(greenland, 8), part(greenland, 0)}), 200);
        EXPECT_GT(part(congo, 8), part(congo, 16));
        EXPECT_GT(part(congo, 8), part(congo, 0));
    }
}

// Where the pictures end they are enlarged: from one pixel to the next colours change little but at shores.
TEST_F(MKMapViewPicture, SatelliteIsSmoothFarBeyondItsPictures) {
    show({400, 300});
    map->setMapType(MKMapTypeSatellite);
    for (const auto& [span, step] : {std::pair{1.0, 10}, std::pair{0.1, 2}}) {
        map->setRegion({{35.5, 69.5}, {span, span}}); // mountains without lakes
        settle();
        std::set<uint32_t> colors;
        for (int y = 1; y < 300; ++y) {
            for (int x = 1; x < 400; ++x) {
                colors.insert(pixelAt(x, y));
                for (const int shift : {0, 8, 16}) {
                    const auto part = [&](int px, int py) { return static_cast<int>(pixelAt(px, py) >> shift & 255); };
                    ASSERT_LE(std::abs(part(x, y) - part(x - 1, y)), step) << x << ", " << y << " at " << span;
                    ASSERT_LE(std::abs(part(x, y) - part(x, y - 1)), step) << x << ", " << y << " at " << span;
                }
            }
        }
        EXPECT_GT(colors.size(), 100u);
    }
}

TEST_F(MKMapViewPicture, StaysCoveredWithTheWorldDuringAFlight) {
    show({400, 300});
    map->setRegion({{22, 5}, {1, 1}});
    settle();
    map->setRegionAnimated({{63, 110}, {1, 1}}, true);
    for (int i = 0; i < 10; ++i) {
        frame();
        EXPECT_EQ(pixelAt(200, 150), style.land);
    }
    settle();
    EXPECT_EQ(pixelAt(200, 150), style.land);
}

} // namespace veyra
