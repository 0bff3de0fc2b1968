// Draws the built-in world in every way into a folder, for looking at:
//     VEYRA_DRAW_PICTURES=FOLDER build/release/bin/test-mapkit --gtest_filter='*EveryPicture*'
#include "Tests/Platform/MapKit/MapFixture.h"

#include "Platform/MapKit/MKBasemapSource.h"
#include "Platform/MapKit/MKLabelWriter.h"

#include <cairo.h>

#include <cstdlib>

namespace veyra {

namespace {

class EveryPicture : public MapTest {
protected:
    EveryPicture() {
        MKLabelWriter::setFontFamily("DejaVu Sans");
        map->setTileSource(MKBasemapSource::shared());
        map->setShowsAttribution(true);
        map->setShowsScale(true);
    }
};

struct Place {
    const char* name;
    CLLocationCoordinate2D coordinate;
};
constexpr Place places[] = {
    {"alps", {46.6, 9.5}}, {"kenya", {-1.3, 36.8}}, {"hudson", {62, -78}}, {"kashmir", {33.5, 76}}};
constexpr const char* typeNames[] = {"standard", "satellite", "hybrid"};

} // namespace

TEST_F(EveryPicture, IsDrawnIntoTheFolderThatTheEnvironmentNames) {
    const char* const folder = getenv("VEYRA_DRAW_PICTURES");
    if (folder == nullptr) {
        GTEST_SKIP() << "VEYRA_DRAW_PICTURES is not set";
    }
    for (const double scale : {1.0, 2.0}) {
        show({512, 384}, scale);
        for (const UIUserInterfaceStyle style : {UIUserInterfaceStyleLight, UIUserInterfaceStyleDark}) {
            window->setUserInterfaceStyle(style);
            for (const MKMapType type : {MKMapTypeStandard, MKMapTypeSatellite, MKMapTypeHybrid}) {
                if (style == UIUserInterfaceStyleDark && type != MKMapTypeStandard) {
                    continue;
                }
                map->setMapType(type);
                for (const double zoom : {0.0, 2.0, 3.0, 4.0, 5.3, 6.0, 8.0, 12.0}) {
                    for (const Place& place : places) {
                        const double span = 360 * 512 / (256 * std::exp2(zoom));
                        map->setRegion({place.coordinate, {0.0001, span}});
                        settle();
                        const std::string path = std::string(folder) + "/" + typeNames[type] + "-z" +
                                                 std::to_string(zoom).substr(0, 4) + "-" + place.name +
                                                 (scale == 2 ? "-2x" : "") +
                                                 (style == UIUserInterfaceStyleDark ? "-dark" : "") + ".png";
                        ASSERT_EQ(cairo_surface_write_to_png(window->surface(), path.c_str()), CAIRO_STATUS_SUCCESS);
                    }
                }
            }
        }
    }
}

} // namespace veyra
