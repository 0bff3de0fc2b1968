// Lines stroked through the mask, against the drawing library's own stroker.
#include "Platform/MapKit/MKStrokeMask.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>

namespace veyra {

namespace {

constexpr int side = 200;

struct Surface {
    Surface() : surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side), cairo_surface_destroy) {}
    uint32_t at(int x, int y) const {
        cairo_surface_flush(surface.get());
        const unsigned char* const row =
            cairo_image_surface_get_data(surface.get()) + y * cairo_image_surface_get_stride(surface.get());
        return reinterpret_cast<const uint32_t*>(row)[x];
    }
    std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface;
};

std::vector<MKPixelPoint> wave(double step) {
    std::vector<MKPixelPoint> points;
    for (double t = 0; t < 60; t += step) {
        points.push_back({100 + (20 + t) * std::sin(t), 100 + (20 + t) * std::cos(t * 1.3)});
    }
    return points;
}

void strokeByMask(const Surface& target, const std::vector<MKPixelPoint>& points, double width,
                  const MKPathStyle::Color& color) {
    MKStrokeMask mask({0, 0, side, side});
    mask.setWidth(width);
    mask.moveTo(points.front());
    for (const MKPixelPoint& point : points) {
        mask.lineTo(point);
    }
    mask.paint(target.surface.get(), 0, 0, color, 1);
}

void strokeByLibrary(const Surface& target, const std::vector<MKPixelPoint>& points, double width,
                     const MKPathStyle::Color& color) {
    cairo_t* const cairo = cairo_create(target.surface.get());
    for (const MKPixelPoint& point : points) {
        cairo_line_to(cairo, point.x, point.y);
    }
    cairo_set_line_width(cairo, width);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
    cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha);
    cairo_stroke(cairo);
    cairo_destroy(cairo);
}

} // namespace

TEST(MKStrokeMask, DrawsWhatTheDrawingLibraryDraws) {
    for (const double step : {0.01, 0.3, 2.0}) {
        for (const double width : {1.0, 1.5, 3.0, 8.0, 24.0}) {
            const Surface ours, theirs;
            const MKPathStyle::Color color{1, 0.5, 0, 0.5};
            strokeByMask(ours, wave(step), width, color);
            strokeByLibrary(theirs, wave(step), width, color);
            double sum = 0, difference = 0;
            int largest = 0;
            for (int y = 0; y < side; ++y) {
                for (int x = 0; x < side; ++x) {
                    const int a = static_cast<int>(ours.at(x, y) >> 24), b = static_cast<int>(theirs.at(x, y) >> 24);
                    sum += b;
                    difference += a - b;
                    largest = std::max(largest, std::abs(a - b));
                }
            }
            EXPECT_LT(std::abs(difference), sum * 0.03) << width << " every " << step;
            // Where two edges meet in one pixel, the greater of them counts alone: half of it may be missing.
            EXPECT_LE(largest, 64) << width << " every " << step;
        }
    }
}

TEST(MKStrokeMask, LaysATranslucentColourOverWhatIsThere) {
    const Surface surface;
    strokeByMask(surface, {{0, 50}, {200, 50}}, 10, {0, 0, 1, 1});
    EXPECT_EQ(surface.at(100, 50), 0xff0000ffU);
    strokeByMask(surface, {{100, 0}, {100, 200}}, 10, {1, 0, 0, 0.5});
    EXPECT_EQ(surface.at(100, 100), 0x80800000U);
    EXPECT_EQ(surface.at(100, 50), 0xff80007fU);
    EXPECT_EQ(surface.at(50, 50), 0xff0000ffU);
    EXPECT_EQ(surface.at(50, 100), 0U);
}

TEST(MKStrokeMask, ALineCrossingItselfDoesNotShowThroughItself) {
    const Surface surface;
    strokeByMask(surface, {{50, 50}, {150, 150}, {150, 50}, {50, 150}}, 12, {0, 0, 0, 0.5});
    EXPECT_EQ(surface.at(100, 100), surface.at(70, 70));
}

TEST(MKStrokeMask, AStretchOfNoLengthIsADot) {
    const Surface surface;
    strokeByMask(surface, {{100, 100}, {100, 100}}, 20, {0, 0, 0, 1});
    EXPECT_EQ(surface.at(108, 100) >> 24, 255U);
    EXPECT_EQ(surface.at(112, 100), 0U);
    EXPECT_EQ(surface.at(107, 107) >> 24, 0U + (surface.at(92, 92) >> 24)); // round, whichever way
}

TEST(MKStrokeMask, DrawsOnlyWithinItsArea) {
    const Surface surface;
    MKStrokeMask mask({50, 60, 20, 10});
    mask.setWidth(30);
    mask.moveTo({-1e6, 65});
    mask.lineTo({1e6, 65});
    mask.paint(surface.surface.get(), 0, 0, {0, 0, 0, 1}, 1);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const bool isInside = x >= 50 && x < 70 && y >= 60 && y < 70;
            ASSERT_EQ(surface.at(x, y), isInside ? 0xff000000U : 0U) << x << ", " << y;
        }
    }
}

TEST(MKStrokeMask, IsEmptyAgainAfterPainting) {
    const Surface first, second;
    MKStrokeMask mask({0, 0, side, side});
    mask.setWidth(5);
    mask.moveTo({10, 10});
    mask.lineTo({150, 90});
    mask.paint(first.surface.get(), 0, 0, {0, 0, 0, 1}, 1);
    mask.paint(second.surface.get(), 0, 0, {0, 0, 0, 1}, 1);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            ASSERT_EQ(second.at(x, y), 0U);
        }
    }
}

} // namespace veyra
