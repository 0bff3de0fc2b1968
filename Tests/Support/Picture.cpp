#include "Tests/Support/Picture.h"

#include <cairo.h>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>

namespace veyra {

namespace {

constexpr double allowedPart = 0.00015; // of all pixels: 39 of 512 × 512
constexpr double largestDelta = 35215;  // of white and black
constexpr double threshold = 0.1;

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

uint32_t pixel(cairo_surface_t* surface, int x, int y) {
    const unsigned char* row = cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface);
    return reinterpret_cast<const uint32_t*>(row)[x] & 0xffffff;
}

// The squared distance of two colours as people see it, in the weights of the NTSC colour space.
double colorDelta(uint32_t a, uint32_t b) {
    const auto part = [](uint32_t color, int shift) { return static_cast<double>((color >> shift) & 255); };
    const double r = part(a, 16) - part(b, 16), g = part(a, 8) - part(b, 8), blue = part(a, 0) - part(b, 0);
    const double y = r * 0.29889531 + g * 0.58662247 + blue * 0.11448223;
    const double i = r * 0.59597799 - g * 0.27417610 - blue * 0.32180189;
    const double q = r * 0.21147017 - g * 0.52261711 + blue * 0.31114694;
    return 0.5053 * y * y + 0.299 * i * i + 0.1957 * q * q;
}

std::string writeDrawn(const std::string& name, cairo_surface_t* drawn) {
    const auto path = std::filesystem::temp_directory_path() / (name + ".drawn.png");
    cairo_surface_write_to_png(drawn, path.c_str());
    return path;
}

} // namespace

testing::AssertionResult looksLike(const std::string& name, cairo_surface_t* drawn) {
    cairo_surface_flush(drawn);
    const std::string path = VEYRA_TEST_IMAGES "/" + name + ".png";
    if (const char* update = getenv("VEYRA_UPDATE_PICTURES"); update && std::string(update) == "1") {
        cairo_surface_write_to_png(drawn, path.c_str());
        return testing::AssertionSuccess();
    }
    const Surface expected(cairo_image_surface_create_from_png(path.c_str()), cairo_surface_destroy);
    if (cairo_surface_status(expected.get()) != CAIRO_STATUS_SUCCESS)
        return testing::AssertionFailure() << path << " cannot be read; drawn: " << writeDrawn(name, drawn);
    const int width = cairo_image_surface_get_width(drawn), height = cairo_image_surface_get_height(drawn);
    if (cairo_image_surface_get_width(expected.get()) != width ||
        cairo_image_surface_get_height(expected.get()) != height)
        return testing::AssertionFailure() << path << " has another size; drawn: " << writeDrawn(name, drawn);
    int different = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            different +=
                colorDelta(pixel(expected.get(), x, y), pixel(drawn, x, y)) > largestDelta * threshold * threshold;
    if (different <= allowedPart * width * height)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << different << " pixels differ from " << path
                                       << "; drawn: " << writeDrawn(name, drawn);
}

} // namespace veyra
