// How overlays are drawn, by colours at places: steps, copies of the world, movement, and values of every kind.
#include "Platform/MapKit/MKOverlayWorker.h"
#include "Tests/Platform/MapKit/OverlayFixture.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <future>
#include <glib.h>
#include <limits>
#include <random>

namespace veyra {

namespace {

constexpr uint32_t white = 0xffffff, red = 0xff0000, blue = 0x0000ff;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

class OverlayDrawing : public OverlayTest {
protected:
    OverlayDrawing() { show({400, 300}); }
    void put(const Overlay& overlay) {
        map->addOverlay(overlay);
        settle();
    }
    void showRegion(const MKCoordinateRegion& region) {
        map->setRegion(region);
        settle();
    }
    /// Every pixel is the same as when the map is shown what it shows now for the first time, but for one of the 15
    /// rows in which the drawing library samples a pixel: lines are cut at other places, which moves them by a
    /// rounding.
    void expectAsDrawnAnew() {
        settle();
        const auto held = pixels();
        const auto overlays = map->overlays();
        map->removeOverlays(overlays);
        settle();
        map->addOverlays(overlays);
        settle();
        const auto anew = pixels();
        int largest = 0, different = 0;
        for (size_t i = 0; i < held.size(); ++i) {
            for (const int shift : {0, 8, 16}) {
                const int delta =
                    std::abs(static_cast<int>(held[i] >> shift & 255) - static_cast<int>(anew[i] >> shift & 255));
                largest = std::max(largest, delta);
                different += delta > 0;
            }
        }
        EXPECT_LE(largest, 17) << different;
        EXPECT_LT(different, 400);
    }
    std::vector<CLLocationCoordinate2D> scribble(size_t count) {
        std::mt19937 random(5);
        std::normal_distribution<double> move(0, 0.4);
        std::vector<CLLocationCoordinate2D> coordinates;
        double latitude = 0, longitude = 0;
        for (size_t i = 0; i < count; ++i) {
            latitude = std::clamp(latitude + move(random), -40.0, 40.0);
            longitude = std::clamp(longitude + move(random), -60.0, 60.0);
            coordinates.push_back({latitude, longitude});
        }
        return coordinates;
    }
    /// A line through places at random: every stretch of it crosses the view.
    std::vector<CLLocationCoordinate2D> thicket(size_t count) {
        std::mt19937 random(3);
        std::uniform_real_distribution<double> place(-10, 10);
        std::vector<CLLocationCoordinate2D> coordinates(count);
        for (auto& coordinate : coordinates) {
            coordinate = {place(random), place(random)};
        }
        return coordinates;
    }
};

} // namespace

TEST_F(OverlayDrawing, TheFillLiesUnderTheLine) {
    showRegion({{0, 0}, {10, 10}});
    const auto made = area({{4, -4}, {4, 4}, {-4, 4}, {-4, -4}});
    made.view->setFillColor(color(blue));
    made.view->setLineWidth(20);
    put(made.overlay);
    EXPECT_EQ(pixelAt({0, 0}), blue);
    EXPECT_EQ(pixelAt({3.8, 0}), red); // inside the area, under the line
    EXPECT_EQ(pixelAt({4.2, 0}), red);
    EXPECT_EQ(pixelAt({4.8, 0}), white);
}

TEST_F(OverlayDrawing, AColourThatIsNoneSkipsItsStep) {
    showRegion({{0, 0}, {10, 10}});
    const auto made = area({{4, -4}, {4, 4}, {-4, 4}, {-4, -4}});
    made.view->setFillColor(nullptr);
    put(made.overlay);
    EXPECT_EQ(pixelAt({0, 0}), white);
    EXPECT_EQ(pixelAt({4, 0}), red);
    const auto filled = square({4, -4}, 8, color(blue));
    map->removeOverlay(made.overlay);
    put(filled.overlay);
    EXPECT_EQ(pixelAt({0, 0}), blue);
    EXPECT_NE(pixelAt({4, 0}), red);
}

TEST_F(OverlayDrawing, PolygonsCloseThemselvesAndPolylinesDoNot) {
    showRegion({{0, 0}, {10, 10}});
    const std::vector<CLLocationCoordinate2D> corners = {{4, -4}, {4, 4}, {-4, 4}, {-4, -4}};
    const auto open = line(corners);
    put(open.overlay);
    EXPECT_EQ(pixelAt({0, 4}), red);
    EXPECT_EQ(pixelAt({0, -4}), white);
    map->removeOverlay(open.overlay);
    put(area(corners).overlay);
    EXPECT_EQ(pixelAt({0, -4}), red);
}

TEST_F(OverlayDrawing, ARingCrossingItselfIsFilledEvenOdd) {
    showRegion({{0, 0}, {10, 10}});
    // Twice around the same square: the inside lies inside twice.
    const auto made = area({{4, -4}, {4, 4}, {-4, 4}, {-4, -4}, {4, -4}, {4, 4}, {-4, 4}, {-4, -4}});
    made.view->setFillColor(color(blue));
    put(made.overlay);
    EXPECT_EQ(pixelAt({0, 0}), white);
}

TEST_F(OverlayDrawing, LaterOverlaysLieOverEarlierOnes) {
    showRegion({{0, 0}, {10, 10}});
    const Overlay one = square({4, -4}, 8, color(red)).overlay, other = square({4, -4}, 8, color(blue)).overlay;
    map->addOverlays({one, other});
    settle();
    EXPECT_EQ(pixelAt({0, 0}), blue);
    map->exchangeOverlayAtIndexWithOverlayAtIndex(0, 1);
    settle();
    EXPECT_EQ(pixelAt({0, 0}), red);
}

TEST_F(OverlayDrawing, EveryVisibleCopyOfTheWorldShowsThem) {
    window->setSize({600, 150}, 1); // the world is 600 points wide
    showRegion({{0, 180}, {20, 360}});
    put(square({10, 170}, 20, color(blue)).overlay); // 170 to 190
    EXPECT_EQ(pixelAt(300, 75), blue);
    map->setCenterCoordinate({0, 0});
    settle();
    EXPECT_EQ(pixelAt(4, 75), blue);
    EXPECT_EQ(pixelAt(595, 75), blue);
    EXPECT_EQ(pixelAt(300, 75), white);
}

TEST_F(OverlayDrawing, AnOverlayThatRunsAroundTheWorldIsDrawnAllTheWay) {
    showRegion({{0, 0}, {10, 10}});
    const auto made = line({{0, -5000}, {0, 5000}});
    put(made.overlay);
    for (const double longitude : {-170.0, -4.0, 0.0, 175.0}) {
        map->setCenterCoordinate({0, longitude});
        settle();
        EXPECT_EQ(pixelAt(200, 150), red) << longitude;
        EXPECT_EQ(pixelAt(3, 150), red) << longitude;
    }
}

TEST_F(OverlayDrawing, AnOverlayManyWorldsAwayIsDrawnHere) {
    showRegion({{0, 0}, {10, 10}});
    for (const double longitude : {36000.0, -36000.0}) {
        const auto made = line({{0, longitude - 2}, {0, longitude + 2}});
        put(made.overlay);
        EXPECT_EQ(pixelAt({0, 0}), red) << longitude;
        map->removeOverlay(made.overlay);
        settle();
        EXPECT_EQ(pixelAt({0, 0}), white);
    }
}

TEST_F(OverlayDrawing, VerticesBeyondThePoleLeaveNoStrayLines) {
    showRegion({{0, 0}, {170, 350}});
    const auto made = area({{-60, -100}, {-60, 100}, {-1e308, 100}, {-1e308, -100}});
    made.view->setStrokeColor(nullptr);
    made.view->setFillColor(color(blue));
    put(made.overlay);
    EXPECT_EQ(pixelAt({-70, 0}), blue);
    EXPECT_EQ(pixelAt({-50, 0}), white);
    EXPECT_EQ(pixelAt({-70, 120}), white);
    EXPECT_EQ(pixelAt({70, 0}), white);
}

TEST_F(OverlayDrawing, APannedMapLooksAsIfItWereDrawnAnew) {
    const auto solid = line(scribble(3000));
    solid.view->setLineJoin(kCGLineJoinRound);
    const auto dashed = line({{-20, -40}, {20, 0}, {-20, 40}});
    dashed.view->setStrokeColor(color(blue, 0.6));
    dashed.view->setLineWidth(7);
    dashed.view->setLineDashPattern(NSArray{id(13), id(5)});
    const auto circle = disc({3, 3}, 900e3);
    circle.view->setFillColor(color(0x00a000, 0.3));
    map->addOverlays({solid.overlay, dashed.overlay, circle.overlay});
    showRegion({{0, 0}, {20, 20}});
    for (const char* direction : {"ArrowRight", "ArrowRight", "ArrowDown", "ArrowLeft", "ArrowUp", "ArrowUp"}) {
        key(direction);
        frames(8);
    }
    expectAsDrawnAnew();
}

TEST_F(OverlayDrawing, AMapPannedAcrossTheAntimeridianLooksAsIfItWereDrawnAnew) {
    const auto made = area({{5, 170}, {8, 190}, {-5, 195}, {-8, 175}});
    made.view->setFillColor(color(blue, 0.5));
    map->addOverlay(made.overlay);
    showRegion({{0, 170}, {20, 20}});
    for (int i = 0; i < 4; ++i) {
        key("ArrowRight");
        frames(20);
    }
    EXPECT_LT(map->centerCoordinate().longitude, 0);
    expectAsDrawnAnew();
}

TEST_F(OverlayDrawing, AZoomedMapLooksAsIfItWereDrawnAnew) {
    map->addOverlay(line(scribble(3000)).overlay);
    showRegion({{0, 0}, {20, 20}});
    for (int i = 0; i < 20; ++i) {
        scroll({150, 100}, i < 12 ? -30 : 20);
        frame();
    }
    expectAsDrawnAnew();
}

TEST_F(OverlayDrawing, AnOverlayAddedOverOthersLooksAsIfAllWereDrawnAnew) {
    const auto under = square({8, -8}, 10, color(red, 0.5)), over = square({4, -4}, 10, color(blue, 0.5));
    showRegion({{0, 0}, {20, 20}});
    put(under.overlay);
    put(over.overlay);
    expectAsDrawnAnew();
}

TEST_F(OverlayDrawing, FollowsTheMapWhileItMoves) {
    showRegion({{0, 0}, {20, 20}});
    put(square({2, -2}, 4, color(blue)).overlay);
    touch(1, UITouchPhase::Began, {200, 150}, UITouchType::IndirectPointer);
    touch(1, UITouchPhase::Moved, {220, 150}, UITouchType::IndirectPointer);
    frame();
    for (int x = 240; x <= 300; x += 20) {
        touch(1, UITouchPhase::Moved, {static_cast<double>(x), 150}, UITouchType::IndirectPointer);
        frame();
        EXPECT_EQ(pixelAt({0, 0}), blue) << x;
        EXPECT_EQ(pixelAt({0, 3}), white) << x;
    }
    touch(1, UITouchPhase::Ended, {300, 150}, UITouchType::IndirectPointer);
    settle();
}

TEST_F(OverlayDrawing, OnlyWhatChangesIsDrawnAgain) {
    showRegion({{0, 0}, {20, 20}});
    const auto small = square({1, -1}, 2, color(blue));
    map->addOverlay(small.overlay);
    int pixels = 0;
    while (!window->isIdle()) {
        for (const PixelRect& rect : frame()) {
            pixels += rect.width * rect.height;
        }
        g_usleep(1000);
    }
    EXPECT_EQ(pixelAt({0, 0}), blue);
    EXPECT_LT(pixels, 400 * 300 / 20);
}

TEST_F(OverlayDrawing, OfManyOverlaysOnlyThePlaceOfTheChangedOneIsDrawnAgain) {
    showRegion({{0, 0}, {20, 20}});
    std::vector<Overlay> all;
    for (int i = 0; i < 200; ++i) {
        all.push_back(square({8.0 - i / 20, -10.0 + i % 20}, 0.8, color(red)).overlay);
    }
    map->addOverlays(all);
    settle();
    const auto pixelsUntilIdle = [&] {
        int pixels = 0;
        while (!window->isIdle()) {
            for (const PixelRect& rect : frame()) {
                pixels += rect.width * rect.height;
            }
            g_usleep(1000);
        }
        return pixels;
    };
    const Overlay other = square({8, -10}, 0.8, color(blue)).overlay;
    map->removeOverlay(all[0]);
    map->insertOverlayAtIndex(other, 0);
    EXPECT_LT(pixelsUntilIdle(), 400 * 300 / 20);
    EXPECT_EQ(pixelAt({7.6, -9.6}), blue);
    EXPECT_EQ(pixelAt({7.6, -8.6}), red);
    map->exchangeOverlayAtIndexWithOverlayAtIndex(0, 199); // they do not meet: all looks the same
    EXPECT_LT(pixelsUntilIdle(), 400 * 300 / 10);
    map->removeOverlay(other);
    EXPECT_LT(pixelsUntilIdle(), 400 * 300 / 20);
    EXPECT_EQ(pixelAt({7.6, -9.6}), white);
    EXPECT_EQ(pixelAt({7.6, -8.6}), red);
    map->removeOverlay(all[199]); // at the edge of them all: the picture becomes smaller
    EXPECT_LT(pixelsUntilIdle(), 400 * 300 / 20);
    EXPECT_EQ(pixelAt({-1.4, 9.4}), white);
}

TEST_F(OverlayDrawing, ChangesAmongOverlaysLookAsIfAllWereDrawnAnew) {
    showRegion({{0, 0}, {20, 20}});
    std::vector<Overlay> all;
    for (int i = 0; i < 12; ++i) {
        const uint32_t rgb = 0x102030U * static_cast<uint32_t>(i % 7 + 1);
        all.push_back(square({8.0 - i, -9.0 + i}, 7, color(rgb, 0.6)).overlay);
    }
    map->addOverlays(all);
    settle();
    map->exchangeOverlayAtIndexWithOverlayAtIndex(2, 9);
    settle();
    map->removeOverlay(all[5]);
    settle();
    map->insertOverlayBelowOverlay(disc({1, 1}, 300e3).overlay, all[3]);
    expectAsDrawnAnew();
}

TEST_F(OverlayDrawing, AnOverlayThatIsLongToDrawHoldsNothingUpWhenItIsTakenAway) {
    showRegion({{0, 0}, {20, 20}});
    const auto slow = line(thicket(3000000)).overlay;
    map->addOverlay(slow);
    frames(3);
    EXPECT_FALSE(window->isIdle()); // it takes several seconds
    const auto start = std::chrono::steady_clock::now();
    map->removeOverlay(slow);
    map->addOverlay(square({4, -4}, 8, color(blue)).overlay);
    settle();
    EXPECT_EQ(pixelAt({0, 0}), blue);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(OverlayDrawing, AnOverlayThatIsTakenAwayBeforeItsDrawingBeganIsNotDrawn) {
    showRegion({{0, 0}, {20, 20}});
    const auto start = std::clock(); // the time of all threads
    const auto slow = line(thicket(3000000)).overlay;
    const auto making = std::clock() - start;
    for (int time = 0; time < 3; ++time) {
        std::promise<void> isTakenAway, isOver;
        MKOverlayWorker::shared().run([done = isTakenAway.get_future().share()] { done.wait(); });
        map->addOverlay(slow);
        frame(); // asks for the drawing
        const auto begin = std::clock();
        map->removeOverlay(slow);
        frame();
        MKOverlayWorker::shared().run([&isOver] { isOver.set_value(); });
        isTakenAway.set_value();
        isOver.get_future().wait();
        EXPECT_LT(std::clock() - begin, making) << time; // drawing it takes several times as long
        runQueue();
    }
}

TEST_F(OverlayDrawing, AnOverlayThatIsReplacedAllTheTimeIsDrawnNowAndThen) {
    showRegion({{0, 0}, {20, 20}});
    const auto coordinates = scribble(200000);
    for (int turn = 0; turn < 2000 && pixelAt({0, 0}) != blue; ++turn) {
        const Overlay next = line(coordinates).overlay, area = square({4, -4}, 8, color(blue)).overlay;
        map->removeOverlays(map->overlays());
        map->addOverlays({next, area});
        frame(); // no drawing ends before the next change
    }
    EXPECT_EQ(pixelAt({0, 0}), blue);
    settle();
}

TEST_F(OverlayDrawing, DashesStayWhereTheyAreOnALineThatEntersTheViewFromFarAway) {
    showRegion({{0, 0}, {1, 1}});
    const auto made = line({{0, -170}, {0, 170}});
    made.view->setLineDashPattern(NSArray{id(40), id(40)});
    put(made.overlay);
    const auto firstDash = [&] {
        for (int x = 2; x < 400; ++x) {
            if (pixelAt(x - 2, 150) == white && pixelAt(x, 150) == red) {
                return x;
            }
        }
        return -1;
    };
    const int before = firstDash();
    ASSERT_GE(before, 0);
    const MKMapRect visible = map->visibleMapRect();
    const MKMapPoint moved{MKMapRectGetMidX(visible) + visible.size.width * 7 / 400, MKMapRectGetMidY(visible)};
    map->setCenterCoordinate(MKCoordinateForMapPoint(moved));
    settle();
    EXPECT_EQ((before - 7 + 80) % 80, firstDash() % 80);
}

TEST_F(OverlayDrawing, ACircleIsRoundAndAsLargeAsItsRadius) {
    showRegion({{60, 10}, {4, 4}});
    const auto made = disc({60, 10}, 100e3);
    made.view->setStrokeColor(nullptr);
    made.view->setFillColor(color(blue));
    put(made.overlay);
    const MKMapRect visible = map->visibleMapRect();
    const double radius = made.overlay->mapRadius() / visible.size.width * 400;
    for (int degrees = 0; degrees < 360; degrees += 15) {
        const double angle = degrees / 57.29577951;
        const auto at = [&](double distance) {
            return pixelAt(static_cast<int>(200 + distance * std::cos(angle)),
                           static_cast<int>(150 + distance * std::sin(angle)));
        };
        EXPECT_EQ(at(radius - 2), blue) << degrees;
        EXPECT_EQ(at(radius + 2), white) << degrees;
    }
}

TEST_F(OverlayDrawing, ACircleLargerThanTheWorldCoversItAndIsNoWork) {
    for (const double radius : {1e8, 1e12, 1e300}) {
        const auto made = disc({0, 0}, radius);
        made.view->setFillColor(color(blue));
        made.view->setLineDashPattern(NSArray{id(5), id(5)});
        put(made.overlay);
        EXPECT_EQ(pixelAt(200, 150), blue) << radius;
        map->removeOverlay(made.overlay);
    }
}

TEST_F(OverlayDrawing, AnEdgeOfAHugeCircleIsDrawnWhereItIs) {
    const auto made = disc({0, 0}, 5e6);
    made.view->setFillColor(color(blue));
    map->addOverlay(made.overlay);
    const MKMapPoint edge{MKWorldSide / 2 + made.overlay->mapRadius(), MKWorldSide / 2};
    const CLLocationCoordinate2D east = MKCoordinateForMapPoint(edge);
    showRegion({east, {1e-5, 1e-5}}); // the innermost zoom
    EXPECT_EQ(pixelAt(200, 150), red);
    EXPECT_EQ(pixelAt(190, 150), blue);
    EXPECT_EQ(pixelAt(210, 150), white);
}

TEST_F(OverlayDrawing, AlmostInvisibleDashesAreAnEvenTone) {
    showRegion({{0, 0}, {10, 10}});
    const auto made = line({{0, -4}, {0, 4}});
    made.view->setLineWidth(10);
    made.view->setLineDashPattern(NSArray{id(0.001), id(0.003)});
    put(made.overlay);
    EXPECT_NEAR(pixelAt({0, 0}) >> 8 & 255, 191, 2); // a quarter red on white
}

TEST_F(OverlayDrawing, ValuesOfEveryKindDrawSomethingOrNothingAndEnd) {
    std::vector<NSArray> patterns = {
        {id(0), id(0)}, {id(-1)}, {id("x")}, {id(1e-300), id(1e-300)}, {id(1e300), id(1e300)}};
    patterns.push_back(NSArray(100000, id(1e-6)));
    patterns.back().push_back(id(1));
    const double values[] = {0, -1, notANumber, 1e9, 1e-300, 1e308, -1e308};
    const std::vector<CLLocationCoordinate2D> shapes[] = {
        {},
        {{0, 0}},
        {{0, 0}, {0, 0}},
        {{1e308, -1e300}, {-1e308, 1e300}, {notANumber, 0}, {0, 1e308}, {5, 5}},
        scribble(500)};
    size_t turn = 0;
    for (const auto& shape : shapes) {
        for (const double value : values) {
            const auto ring = area(shape);
            ring.view->setFillColor(color(blue, value));
            ring.view->setLineWidth(value);
            const auto open = line(shape);
            open.view->setMiterLimit(value);
            open.view->setLineDashPhase(value);
            open.view->setLineDashPattern(patterns[turn++ % patterns.size()]);
            const auto circle = disc({value, value}, value);
            circle.view->setLineDashPattern(patterns[turn % patterns.size()]);
            map->addOverlays({ring.overlay, open.overlay, circle.overlay});
        }
    }
    for (const double span : {300.0, 10.0, 1e-4}) {
        showRegion({{0, 0}, {span, span}});
    }
    EXPECT_TRUE(window->isIdle());
}

} // namespace veyra
