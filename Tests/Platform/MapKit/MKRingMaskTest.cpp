// Rings filled even-odd by samples, against the drawing library's own filling.
#include "Platform/MapKit/MKRingMask.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace veyra {

namespace {

constexpr PixelRect area{10, 20, 203, 150};

MKRingMask::Surface byLibrary(const std::vector<MKPixelPoint>& ring) {
    MKRingMask::Surface surface(cairo_image_surface_create(CAIRO_FORMAT_A8, area.width, area.height),
                                cairo_surface_destroy);
    cairo_t* const cairo = cairo_create(surface.get());
    cairo_translate(cairo, -area.x, -area.y);
    for (const MKPixelPoint& point : ring) {
        cairo_line_to(cairo, point.x, point.y);
    }
    cairo_set_fill_rule(cairo, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_fill(cairo);
    cairo_destroy(cairo);
    cairo_surface_flush(surface.get());
    return surface;
}

int valueAt(const MKRingMask::Surface& surface, int x, int y) {
    return cairo_image_surface_get_data(surface.get())[y * cairo_image_surface_get_stride(surface.get()) + x];
}

void expectAsByLibrary(const std::vector<MKPixelPoint>& ring, int largestAllowed) {
    const MKDrawingTicket ticket;
    const auto ours = MKRingMask(area, ticket).coverageOf(ring), theirs = byLibrary(ring);
    int largest = 0;
    double sum = 0, difference = 0;
    for (int y = 0; y < area.height; ++y) {
        for (int x = 0; x < area.width; ++x) {
            const int a = valueAt(ours, x, y), b = valueAt(theirs, x, y);
            largest = std::max(largest, std::abs(a - b));
            sum += b;
            difference += a - b;
        }
    }
    EXPECT_LE(largest, largestAllowed);
    EXPECT_LE(std::abs(difference), sum * 0.005);
    EXPECT_GT(sum, 0);
}

std::vector<MKPixelPoint> scribble(size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> x(area.x - 30, area.maxX() + 30), y(area.y - 30, area.maxY() + 30);
    std::vector<MKPixelPoint> points(count);
    for (MKPixelPoint& point : points) {
        point = {x(random), y(random)};
    }
    return points;
}

} // namespace

TEST(MKRingMask, FillsLikeTheDrawingLibrary) {
    expectAsByLibrary({{20.3, 30.7}, {200.9, 41.2}, {120.5, 160.1}}, 24);
    expectAsByLibrary({{-500, 60.5}, {700, 60.5}, {700, 100.25}, {-500, 100.25}}, 24); // across both edges
    expectAsByLibrary({{30, 30}, {180, 150}, {180, 30}, {30, 150}}, 24);               // crosses itself
    for (const unsigned seed : {1U, 2U, 3U}) {
        expectAsByLibrary(scribble(9, seed), 60); // a few sharp tips
    }
}

TEST(MKRingMask, WhatLiesTwiceInsideIsOutside) {
    const MKDrawingTicket ticket;
    const std::vector<MKPixelPoint> twice = {{30, 30}, {90, 30}, {90, 90}, {30, 90},
                                             {30, 30}, {90, 30}, {90, 90}, {30, 90}};
    const auto coverage = MKRingMask(area, ticket).coverageOf(twice);
    EXPECT_EQ(valueAt(coverage, 50, 40), 0);
}

TEST(MKRingMask, IsWorthItForThicketsAlone) {
    EXPECT_TRUE(MKRingMask::isWorthIt(scribble(1000, 1), area));
    EXPECT_FALSE(MKRingMask::isWorthIt(scribble(50, 1), area));
    std::vector<MKPixelPoint> round; // many corners, few edges side by side
    for (int i = 0; i < 100000; ++i) {
        round.push_back({100 + 50 * std::cos(i * 6.2831853e-5), 100 + 50 * std::sin(i * 6.2831853e-5)});
    }
    EXPECT_FALSE(MKRingMask::isWorthIt(round, area));
}

TEST(MKRingMask, AThicketOfTwoHundredThousandEdgesIsFilledInAMoment) {
    const MKDrawingTicket ticket;
    const auto coverage = MKRingMask(area, ticket).coverageOf(scribble(200000, 7));
    double sum = 0;
    for (int y = 0; y < area.height; ++y) {
        for (int x = 0; x < area.width; ++x) {
            sum += valueAt(coverage, x, y);
        }
    }
    EXPECT_NEAR(sum / 255 / static_cast<double>(area.area()), 0.5, 0.02); // inside as often as outside
}

TEST(MKRingMask, GivesUpWhatNobodyWants) {
    MKDrawingTicket ticket;
    ticket.abandon();
    EXPECT_THROW(MKRingMask(area, ticket).coverageOf(scribble(9, 1)), MKDrawingTicket::Abandoned);
}

} // namespace veyra
