#include "Tests/Platform/MapKit/MapFixture.h"

#include "Tests/Platform/Foundation/CapturedLog.h"

#include <chrono>
#include <cmath>
#include <thread>

namespace veyra {

namespace {

class MKMapViewLoading : public MapTest {};

} // namespace

TEST_F(MKMapViewLoading, FirstShowLoadsAndFinishes) {
    window->setSize({400, 300}, 1);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFinish"}));
    EXPECT_EQ(pixelAt(200, 150), 0x00ff00u);
}

TEST_F(MKMapViewLoading, FinishesOnlyWhenAllIsDrawn) {
    source->blocked = true;
    window->setSize({400, 300}, 1);
    frames(5);
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart"}));
    EXPECT_EQ(pixelAt(200, 150), 0x0000ffu);
    EXPECT_FALSE(map->isIdle());
    source->blocked = false;
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFinish"}));
}

TEST_F(MKMapViewLoading, WhatIsHeldIsShownWithoutLoading) {
    show();
    map->setMapType(MKMapTypeSatellite);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFinish"}));
    map->setMapType(MKMapTypeStandard);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFinish"}));
}

TEST_F(MKMapViewLoading, ShowsWhatItHasUntilTheNewTilesCome) {
    show();
    source->blocked = true;
    map->setRegion({{40, 100}, {3, 3}});
    frames(3);
    EXPECT_FALSE(map->isIdle());
    EXPECT_EQ(pixelAt(200, 150), 0x00ff00u) << "the overview stands in, not the background";
    source->blocked = false;
    settle();
}

TEST_F(MKMapViewLoading, AFailingSourceIsReportedOnceForAllThatWasMissing) {
    source->fails = true;
    const CapturedLog log;
    window->setSize({900, 700}, 1);
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFail MKErrorDomain"}));
}

TEST_F(MKMapViewLoading, TilesThatFailedAreAskedForAgainWithTheNextChange) {
    const CapturedLog log;
    source->fails = true;
    window->setSize({400, 300}, 1);
    settle();
    source->fails = false;
    delegate->calls.clear();
    map->setCenterCoordinate({0, 0});
    settle();
    EXPECT_EQ(delegate->loadingCalls(), (Calls{"willStart", "didFinish"}));
    EXPECT_EQ(pixelAt(200, 150), 0x00ff00u);
}

TEST_F(MKMapViewLoading, MapsShareWhatIsDrawn) {
    show();
    const int drawn = source->drawn;
    const auto other = UIView::make<MKMapView>({{0, 0}, {400, 300}});
    other->setTileSource(source);
    const auto otherWindow = UIWindow::make();
    otherWindow->setSize({400, 300}, 1);
    otherWindow->addSubview(other);
    otherWindow->drawFrame(now);
    EXPECT_FALSE(other->isIdle() && source->drawn != drawn);
    EXPECT_EQ(source->drawn, drawn);
}

TEST_F(MKMapViewLoading, AMapThatGoesWhileItsTilesAreDrawnLeavesNothingBehind) {
    source->blocked = true;
    window->setSize({400, 300}, 1);
    frames(2);
    const std::weak_ptr<MKMapView> weak = map;
    window.reset();
    host.reset();
    map.reset();
    runQueue();
    EXPECT_TRUE(weak.expired());
    source->blocked = false;
    while (source.use_count() > 1) {
        runQueue();
    }
}

TEST_F(MKMapViewLoading, APanRedrawsAndAsksOnlyForNewTiles) {
    show({512, 384});
    map->setRegion({{0, 0}, {1, 1}});
    settle();
    const int drawn = source->drawn;
    key("ArrowRight");
    frames(30);
    settle();
    EXPECT_LE(source->drawn - drawn, 8);
}

// Between the scales at which it begins and comes to rest.
TEST_F(MKMapViewLoading, AFastZoomTakesTilesOfWholeStepsAndASlowOneOfHalfSteps) {
    show();
    double span = 40;
    const auto zoom = [&](double levels, double levelsAFrame) {
        const auto before = source->drawnScales();
        for (double zoomed = 0; zoomed < levels; zoomed += levelsAFrame) {
            map->setRegion({{0, 0}, {span, span}});
            span /= std::exp2(levelsAFrame);
            const int drawn = source->drawn;
            frame();
            for (int tries = 0; tries < 5 && source->drawn == drawn; ++tries) { // the threads may be slow to wake
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        }
        std::set<double> steps; // within a level
        for (const double scale : source->drawnScales()) {
            const double part = std::log2(scale) - std::floor(std::log2(scale));
            if (!before.contains(scale) && (part == 0 || part == 0.5)) {
                steps.insert(part);
            }
        }
        settle();
        return steps;
    };
    EXPECT_EQ(zoom(3, 0.05), std::set<double>{0});
    EXPECT_EQ(zoom(3, 0.01), (std::set<double>{0, 0.5}));
    EXPECT_EQ(zoom(3, 0.05), std::set<double>{0});
}

} // namespace veyra
