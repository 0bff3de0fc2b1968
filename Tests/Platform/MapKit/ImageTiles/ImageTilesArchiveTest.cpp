// Maps that are shown from archives which another program has written.
#include "Platform/MapKit/ImageTiles/MKArchiveImageSet.h"
#include "Tests/Platform/MapKit/ImageTiles/ImageTilesFixture.h"
#include "Tests/Support/Picture.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sqlite3.h>

namespace veyra {

namespace {

constexpr uint32_t world = 0x00ff00;

class ImageTilesArchive : public ImageTilesTest {
protected:
    /// An archive of two zooms with the picture of `drawPattern`, as GDAL writes it.
    std::string writeArchive(const std::string& options = "") {
        const std::string picture = folder / "pattern.png", path = folder / "world.mbtiles";
        cairo_surface_t* const pattern = drawPattern();
        cairo_surface_write_to_png(pattern, picture.c_str());
        cairo_surface_destroy(pattern);
        const std::string command = "gdal_translate -q -of MBTILES -a_srs EPSG:3857 -a_ullr -20037508.342789244 "
                                    "20037508.342789244 20037508.342789244 -20037508.342789244 " +
                                    options + " " + picture + " " + path + " && gdaladdo -q " + path + " 2";
        EXPECT_EQ(std::system(command.c_str()), 0) << command; // NOLINT(concurrency-mt-unsafe)
        return path;
    }
    /// A picture of the whole world, 512 pixels square: rings, lines and a slow change of colour.
    static cairo_surface_t* drawPattern() {
        cairo_surface_t* const pattern = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 512, 512);
        cairo_t* const cairo = cairo_create(pattern);
        cairo_pattern_t* const slow = cairo_pattern_create_linear(0, 0, 512, 512);
        cairo_pattern_add_color_stop_rgb(slow, 0, 0.9, 0.8, 0.5);
        cairo_pattern_add_color_stop_rgb(slow, 1, 0.3, 0.6, 0.9);
        cairo_set_source(cairo, slow);
        cairo_paint(cairo);
        cairo_pattern_destroy(slow);
        cairo_set_source_rgb(cairo, 0.2, 0.1, 0.3);
        for (int radius = 20; radius < 400; radius += 30) {
            cairo_set_line_width(cairo, 1 + radius % 4);
            cairo_arc(cairo, 200, 230, radius, 0, 2 * M_PI);
            cairo_stroke(cairo);
        }
        cairo_set_line_width(cairo, 1);
        for (int x = 0; x < 512; x += 37) {
            cairo_move_to(cairo, x + 0.5, 0);
            cairo_line_to(cairo, 512 - x, 512);
            cairo_stroke(cairo);
        }
        cairo_destroy(cairo);
        return pattern;
    }
    void useArchive(const std::string& path, MKImageSetProperties properties = {}) {
        properties.maximumZoom = MKImageSet::largestZoom;
        useSet(std::make_shared<MKArchiveImageSet>(path, std::move(properties)));
    }
    void change(const std::string& path, const std::string& statements) {
        sqlite3* database = nullptr;
        sqlite3_open(path.c_str(), &database);
        EXPECT_EQ(sqlite3_exec(database, statements.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(database);
    }
};

} // namespace

TEST_F(ImageTilesArchive, ShowsThePictureThatWasPutIn) {
    useArchive(writeArchive());
    show({512, 512});
    cairo_surface_t* const pattern = drawPattern();
    const auto* const pixels = reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(pattern));
    int different = 0;
    for (int y = 0; y < 512; ++y) {
        for (int x = 0; x < 512; ++x) {
            different += pixelAt(x, y) != (pixels[512 * y + x] & 0xffffff);
        }
    }
    cairo_surface_destroy(pattern);
    EXPECT_EQ(different, 0) << "at its own zoom the picture is the same, pixel for pixel";
}

TEST_F(ImageTilesArchive, IsShownSmoothlyBetweenItsZooms) {
    useArchive(writeArchive());
    show({720, 512});
    map->setRegion({{0, 0}, {170, 360}});
    settle();
    EXPECT_TRUE(looksLike("images-fractional-zoom", window->surface()));
}

TEST_F(ImageTilesArchive, IsShownLargerBeyondItsHighestZoom) {
    useArchive(writeArchive());
    show({512, 512});
    map->setRegion({{10, -40}, {60, 60}});
    settle();
    EXPECT_TRUE(looksLike("images-beyond-the-highest-zoom", window->surface()));
    EXPECT_EQ(delegate->loadingCalls().back(), "didFinish");
}

TEST_F(ImageTilesArchive, WhereItHasNoTilesThoseOfLowerZoomsAreShown) {
    const std::string path = writeArchive();
    change(path, "DELETE FROM tiles WHERE zoom_level = 1 AND tile_column = 1");
    useArchive(path);
    show({512, 512});
    EXPECT_EQ(delegate->loadingCalls(), Calls());
    EXPECT_NE(pixelAt(400, 150), world);
    EXPECT_NE(pixelAt(100, 150), world);
}

TEST_F(ImageTilesArchive, WhereItHasNothingTheWorldIsShown) {
    const std::string path = writeArchive();
    change(path, "DELETE FROM tiles WHERE zoom_level = 0 OR tile_column = 1");
    useArchive(path);
    show({512, 512});
    EXPECT_EQ(pixelAt(400, 150), world);
    EXPECT_NE(pixelAt(100, 150), world);
}

TEST_F(ImageTilesArchive, SaysWhoseItIsOnceItWasOpened) {
    const std::string path = writeArchive();
    change(path, "INSERT INTO metadata VALUES ('attribution', '<a href=\"https://example.org\">Us</a>')");
    map->setShowsAttribution(true);
    useArchive(path);
    show({512, 512});
    EXPECT_EQ(window->caption().text, "Us");
    EXPECT_EQ(window->caption().url, "https://example.org");
    useArchive(path, {.attribution = {"Them", ""}});
    settle();
    EXPECT_EQ(window->caption().text, "Them") << "what was given is stronger";
    EXPECT_EQ(window->caption().url, "");
}

TEST_F(ImageTilesArchive, ThatIsNoneFailsOnceAndTheWorldShowsThrough) {
    const std::string path = folder / "broken.mbtiles";
    std::ofstream(path) << std::string(20000, 'x');
    useArchive(path);
    window->setSize({600, 500}, 1);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFail MKErrorDomain"}));
    EXPECT_EQ(pixelAt(300, 250), world);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0], "message: MKMapView: a tile cannot be drawn: " + path + ": file is not a database");
}

TEST_F(ImageTilesArchive, ThatIsEmptyFailsOnce) {
    const std::string path = folder / "empty.mbtiles";
    std::ofstream{path};
    useArchive(path);
    window->setSize({600, 500}, 1);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFail MKErrorDomain"}));
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0], "message: MKMapView: a tile cannot be drawn: " + path + ": no such table: tiles");
}

TEST_F(ImageTilesArchive, ADamagedTileIsNamed) {
    const std::string path = writeArchive();
    change(path, "UPDATE tiles SET tile_data = 'nonsense' WHERE zoom_level = 1 AND tile_column = 1 AND tile_row = 1");
    useArchive(path);
    window->setSize({512, 512}, 1);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFail MKErrorDomain"}));
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0], "message: MKMapView: a tile cannot be drawn: " + path +
                                  ": tile 1/1/0: the bytes are no PNG, JPEG or WebP picture");
}

TEST_F(ImageTilesArchive, JPEGTilesAreShown) {
    useArchive(writeArchive("-co TILE_FORMAT=JPEG"));
    window->setSize({512, 512}, 1);
    settle();
    EXPECT_TRUE(looksLike("images-jpeg", window->surface()));
    EXPECT_EQ(delegate->loadingCalls().back(), "didFinish");
}

} // namespace veyra
