// Lines in every look against the drawing library's own drawing of the same path, and lines so long that they are drawn
// in parts.
#include "Platform/MapKit/MKPathPainter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

namespace veyra {

namespace {

constexpr int side = 240;
constexpr PixelRect whole{0, 0, side, side};

struct Surface {
    Surface() : surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side), cairo_surface_destroy) {}
    int alphaAt(int x, int y) const {
        const unsigned char* const row =
            cairo_image_surface_get_data(surface.get()) + y * cairo_image_surface_get_stride(surface.get());
        return static_cast<int>(reinterpret_cast<const uint32_t*>(row)[x] >> 24);
    }
    std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface;
};

using Context = std::unique_ptr<cairo_t, decltype(&cairo_destroy)>;

Context contextOf(const Surface& target) {
    return {cairo_create(target.surface.get()), cairo_destroy};
}

MKOutline outlineOf(const std::vector<MKPixelPoint>& points, bool isClosed) {
    MKOutline outline;
    outline.isClosed = isClosed;
    double length = 0;
    for (size_t i = 0; i < points.size(); ++i) {
        length += i > 0 ? std::hypot(points[i].x - points[i - 1].x, points[i].y - points[i - 1].y) : 0;
        outline.add(points[i], length);
    }
    if (isClosed) {
        length += std::hypot(points.back().x - points.front().x, points.back().y - points.front().y);
        outline.add(points.front(), length);
    }
    return outline;
}

void paint(const Surface& target, const std::vector<MKPixelPoint>& points, bool isClosed, const MKPathStyle& style) {
    const Context context = contextOf(target);
    const MKDrawingTicket ticket;
    MKPathPainter(context.get(), whole, 0, 0, ticket).stroke(outlineOf(points, isClosed), style, style.width, 1);
    cairo_surface_flush(target.surface.get());
}

void paintByLibrary(const Surface& target, const std::vector<MKPixelPoint>& points, bool isClosed,
                    const MKPathStyle& style) {
    static constexpr cairo_line_join_t joins[] = {CAIRO_LINE_JOIN_MITER, CAIRO_LINE_JOIN_ROUND, CAIRO_LINE_JOIN_BEVEL};
    static constexpr cairo_line_cap_t caps[] = {CAIRO_LINE_CAP_BUTT, CAIRO_LINE_CAP_ROUND, CAIRO_LINE_CAP_SQUARE};
    const Context context = contextOf(target);
    cairo_t* const cairo = context.get();
    for (const MKPixelPoint& point : points) {
        cairo_line_to(cairo, point.x, point.y);
    }
    if (isClosed) {
        cairo_close_path(cairo);
    }
    cairo_set_line_width(cairo, style.width);
    cairo_set_line_join(cairo, joins[style.join]);
    cairo_set_line_cap(cairo, caps[style.cap]);
    cairo_set_miter_limit(cairo, style.miterLimit);
    cairo_set_dash(cairo, style.dashes.data(), static_cast<int>(style.dashes.size()), style.dashPhase);
    cairo_set_source_rgba(cairo, style.stroke->red, style.stroke->green, style.stroke->blue, style.stroke->alpha);
    cairo_stroke(cairo);
    cairo_surface_flush(target.surface.get());
}

/// How far two pictures are apart: pixels that differ visibly, as a share of those that are drawn, the difference of
/// all coverage as a share of it, and the largest difference of a pixel.
struct Distance {
    double visibly, inAll;
    int largest;
};

Distance distanceOf(const Surface& ours, const Surface& theirs) {
    constexpr int visible = 48;
    int drawn = 0, different = 0, largest = 0;
    double sum = 0, difference = 0;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const int a = ours.alphaAt(x, y), b = theirs.alphaAt(x, y);
            drawn += a > 0 || b > 0;
            different += std::abs(a - b) > visible;
            largest = std::max(largest, std::abs(a - b));
            sum += b;
            difference += a - b;
        }
    }
    return {static_cast<double>(different) / std::max(drawn, 1), std::abs(difference) / std::max(sum, 1.0), largest};
}

std::vector<MKPixelPoint> scribble(size_t count, unsigned seed, double margin = 40) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(margin, side - margin);
    std::vector<MKPixelPoint> points(count);
    for (MKPixelPoint& point : points) {
        point = {place(random), place(random)};
    }
    return points;
}

MKPathStyle styled(double width, CGLineJoin join, CGLineCap cap, std::vector<double> dashes = {}) {
    MKPathStyle style;
    style.stroke = MKPathStyle::Color{0.2, 0.4, 0.8, 1};
    style.width = width;
    style.join = join;
    style.cap = cap;
    style.dashes = std::move(dashes);
    return style;
}

constexpr CGLineJoin allJoins[] = {kCGLineJoinMiter, kCGLineJoinRound, kCGLineJoinBevel};
constexpr CGLineCap allCaps[] = {kCGLineCapButt, kCGLineCapRound, kCGLineCapSquare};

} // namespace

TEST(MKPathPainter, DrawsEachLookLikeTheDrawingLibrary) {
    for (const double width : {0.5, 0.8, 1.0, 1.5, 2.0, 5.0, 14.0}) {
        for (const CGLineJoin join : allJoins) {
            for (const CGLineCap cap : allCaps) {
                for (const bool isClosed : {false, true}) {
                    for (const double miterLimit : {1.0, 3.0, 10.0}) {
                        MKPathStyle style = styled(width, join, cap);
                        style.miterLimit = miterLimit;
                        const Surface ours, theirs;
                        const auto points = scribble(7, 3);
                        paint(ours, points, isClosed, style);
                        paintByLibrary(theirs, points, isClosed, style);
                        const Distance distance = distanceOf(ours, theirs);
                        const auto look = testing::Message() << width << " wide, join " << join << ", cap " << cap;
                        // Round corners: where two edges meet in one pixel, the greater of them counts alone, and half
                        // of it may be missing.
                        EXPECT_LT(distance.visibly, join == kCGLineJoinRound ? 0.035 : 0.001) << look;
                        EXPECT_LE(distance.largest, join == kCGLineJoinRound ? 128 : 20) << look;
                        EXPECT_LT(distance.inAll, join == kCGLineJoinRound ? 0.04 : 0.002) << look;
                    }
                }
            }
        }
    }
}

TEST(MKPathPainter, DashesLikeTheDrawingLibrary) {
    const std::vector<double> patterns[] = {{12, 7}, {5, 3, 1, 3}, {0, 9}, {30, 2}, {2.5, 4.5}};
    for (const auto& pattern : patterns) {
        for (const double phase : {0.0, 3.0, 13.5}) {
            for (const CGLineCap cap : allCaps) {
                if (pattern[0] == 0 && cap != kCGLineCapRound) {
                    continue; // dots have no direction
                }
                MKPathStyle style = styled(4, kCGLineJoinRound, cap, pattern);
                style.dashPhase = std::fmod(phase, pattern[0] + pattern[1]);
                const Surface ours, theirs;
                const auto points = scribble(5, 8);
                paint(ours, points, false, style);
                paintByLibrary(theirs, points, false, style);
                const Distance distance = distanceOf(ours, theirs);
                const auto look = testing::Message()
                                  << pattern[0] << ", " << pattern[1] << " from " << phase << ", cap " << cap;
                EXPECT_LT(distance.visibly, 0.005) << look;
                EXPECT_LT(distance.inAll, pattern[0] == 0 ? 0.05 : 0.03) << look; // a small dot is mostly edge
            }
        }
    }
}

TEST(MKPathPainter, ATranslucentLineIsNowhereDarkerThanItsColour) {
    for (const CGLineJoin join : allJoins) {
        for (const CGLineCap cap : allCaps) {
            for (const size_t count : {40U, 3000U}) {
                MKPathStyle style = styled(6, join, cap);
                style.stroke->alpha = 0.5;
                const Surface surface;
                paint(surface, scribble(count, 4), false, style);
                int darkest = 0;
                for (int y = 0; y < side; ++y) {
                    for (int x = 0; x < side; ++x) {
                        darkest = std::max(darkest, surface.alphaAt(x, y));
                    }
                }
                EXPECT_NEAR(darkest, 128, 1) << join << ", " << cap << ", " << count;
            }
        }
    }
}

// Long lines are drawn in parts; nothing of that is to be seen.
TEST(MKPathPainter, ALineOfManyPlacesLooksLikeOneStroke) {
    for (const CGLineJoin join : {kCGLineJoinMiter, kCGLineJoinBevel}) {
        for (const CGLineCap cap : allCaps) {
            for (const bool isClosed : {false, true}) {
                // A spiral whose turns lie apart, with a corner at every place.
                std::vector<MKPixelPoint> points;
                for (int i = 0; i < 30000; ++i) {
                    const double angle = i * 0.0021, away = 20 + angle * 1.4 + (i % 2 == 0 ? 0.5 : 0);
                    points.push_back({120 + away * std::cos(angle), 120 + away * std::sin(angle)});
                }
                const MKPathStyle style = styled(3, join, cap);
                const Surface ours, theirs;
                paint(ours, points, isClosed, style);
                paintByLibrary(theirs, points, isClosed, style);
                const Distance distance = distanceOf(ours, theirs);
                EXPECT_LT(distance.visibly, 0.003) << join << ", " << cap << ", " << isClosed;
                EXPECT_LT(distance.inAll, 0.02) << join << ", " << cap << ", " << isClosed;
            }
        }
    }
}

TEST(MKPathPainter, DashesOfManyPlacesLookLikeOneStroke) {
    // Stretches of some length: the library measures between places that it has rounded.
    std::vector<MKPixelPoint> points;
    for (int i = 0; i < 2000; ++i) {
        const double angle = i * 0.03, away = 20 + angle * 1.4;
        points.push_back({120 + away * std::cos(angle), 120 + away * std::sin(angle)});
    }
    for (const auto& pattern : {std::vector<double>{1, 1.5}, std::vector<double>{2500, 20}}) {
        for (const CGLineCap cap : allCaps) {
            const MKPathStyle style = styled(3, kCGLineJoinMiter, cap, pattern);
            const Surface ours, theirs;
            paint(ours, points, false, style);
            paintByLibrary(theirs, points, false, style);
            const Distance distance = distanceOf(ours, theirs);
            EXPECT_LT(distance.visibly, 0.005) << pattern[0] << ", " << cap;
            EXPECT_LT(distance.inAll, 0.02) << pattern[0] << ", " << cap;
        }
    }
}

TEST(MKPathPainter, DashesTooFineToSeeLeaveWhatTheirGapsLeaveOpen) {
    const std::vector<MKPixelPoint> points = {{20, 120}, {220, 120}};
    const auto toneOf = [&](CGLineCap cap, std::vector<double> dashes) {
        const Surface surface;
        paint(surface, points, false, styled(10, kCGLineJoinRound, cap, std::move(dashes)));
        return surface.alphaAt(120, 120);
    };
    EXPECT_NEAR(toneOf(kCGLineCapButt, {0.1, 0.3}), 64, 1);
    EXPECT_EQ(toneOf(kCGLineCapRound, {0.1, 0.3}), 255); // the round ends close the gaps
    EXPECT_EQ(toneOf(kCGLineCapSquare, {1e-12, 1e-12}), 255);
    EXPECT_NEAR(toneOf(kCGLineCapButt, {1e-12, 1e-12}), 128, 1);
}

TEST(MKPathPainter, APatternOfAMillionEntriesIsNoWorkForALineInManyPieces) {
    std::vector<MKPixelPoint> points; // in and out of the picture, fifty thousand times
    for (int i = 0; i < 50000; ++i) {
        points.push_back({i % 2 == 0 ? -50.0 : 20.0, i * 0.004});
    }
    std::vector<double> dashes(1000000, 3);
    const Surface surface;
    paint(surface, points, false, styled(2, kCGLineJoinMiter, kCGLineCapButt, std::move(dashes)));
    EXPECT_GT(surface.alphaAt(5, 100), 0);
    EXPECT_EQ(surface.alphaAt(100, 100), 0);
}

TEST(MKPathPainter, MoreDashesThanAnybodySeesAreASolidLine) {
    const auto points = scribble(300000, 6); // some 25 million pixels long
    const Surface surface;
    paint(surface, points, false, styled(2, kCGLineJoinMiter, kCGLineCapButt, {1, 1}));
    EXPECT_EQ(surface.alphaAt(120, 120), 255);
    EXPECT_EQ(surface.alphaAt(20, 20), 0);
}

TEST(MKPathPainter, AWideThicketCoversAllAndIsLittleWork) {
    const Surface surface;
    paint(surface, scribble(300000, 6, -1000), false, styled(4000, kCGLineJoinMiter, kCGLineCapSquare));
    for (const int at : {0, 120, 239}) {
        EXPECT_EQ(surface.alphaAt(at, 239 - at), 255);
    }
}

TEST(MKPathPainter, GivesUpWhatNobodyWants) {
    const Surface surface;
    const Context context = contextOf(surface);
    MKDrawingTicket ticket;
    MKPathPainter painter(context.get(), whole, 0, 0, ticket);
    const MKOutline outline = outlineOf(scribble(10, 1), false);
    const MKPathStyle style = styled(3, kCGLineJoinMiter, kCGLineCapButt);
    painter.stroke(outline, style, 3, 1);
    ticket.abandon();
    EXPECT_THROW(painter.stroke(outline, style, 3, 1), MKDrawingTicket::Abandoned);
}

} // namespace veyra
