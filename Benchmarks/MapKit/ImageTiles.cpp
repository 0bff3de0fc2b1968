// Milliseconds of what a worker does for a map of images: decoding one of 256 pixels a side, and putting a tile of 512
// together from images, at their own size and at others. The argument is the tile's pixels a pixel of an image, in
// percent.
#include "Platform/MapKit/ImageTiles/MKImageTilePainter.h"
#include "Platform/MapKit/MKBasemapSource.h"
#include "Platform/MapKit/MKGeometry.h"

#include <benchmark/benchmark.h>
#include <gdk-pixbuf/gdk-pixbuf.h>

#include <random>
#include <string>

namespace {

using namespace veyra;

// An image with some detail.
std::string picture(const char* format) {
    constexpr int side = 256;
    GdkPixbuf* const pixels = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, side, side);
    std::mt19937 random(1);
    guchar* const bytes = gdk_pixbuf_get_pixels(pixels);
    const int stride = gdk_pixbuf_get_rowstride(pixels);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < 3 * side; ++x) {
            bytes[y * stride + x] = static_cast<guchar>(128 + (x / 30 * y / 20) % 90 + static_cast<int>(random() % 8));
        }
    }
    gchar* saved = nullptr;
    gsize length = 0;
    gdk_pixbuf_save_to_buffer(pixels, &saved, &length, format, nullptr, nullptr);
    g_object_unref(pixels);
    std::string result(saved, length);
    g_free(saved);
    return result;
}

void decode(benchmark::State& state, const char* format) {
    const std::string bytes = picture(format);
    for (auto _ : state) {
        benchmark::DoNotOptimize(decodeTileImage(bytes));
    }
}
BENCHMARK_CAPTURE(decode, png, "png")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode, jpeg, "jpeg")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode, webp, "webp")->Unit(benchmark::kMillisecond);

void compose(benchmark::State& state) {
    const int zoom = 8;
    const double scale = 256 * 256.0 / MKWorldSide * static_cast<double>(state.range(0)) / 100;
    const MKTileKey key{.source = 1, .scale = scale, .column = 20, .row = 21};
    const MKImageGrid grid(key, 256, zoom, zoom);
    const auto image = decodeTileImage(picture("png"));
    MKTileImages images;
    for (int row = grid.firstRow; row <= grid.lastRow; ++row) {
        for (int column = grid.firstColumn; column <= grid.lastColumn; ++column) {
            const MKImageKey place{1, zoom, column, row, false};
            images.pieces.push_back({place, place, image});
        }
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(MKImageTilePainter(key, 256, images, *MKBasemapSource::shared()).draw());
    }
    state.counters["images"] = static_cast<double>(images.pieces.size());
}
BENCHMARK(compose)->Arg(100)->Arg(75)->Arg(120)->Arg(800)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
