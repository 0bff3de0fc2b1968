// The overlays of a map: when the delegate is asked for views and told of them, the order, and the log.
#include "Tests/Platform/Foundation/CapturedLog.h"
#include "Tests/Platform/MapKit/OverlayFixture.h"

#include <glib.h>

namespace veyra {

namespace {

class MKMapViewOverlays : public OverlayTest {
protected:
    /// Lines at 0, 0 and at 60, 100; the map shows the former.
    void showHere() {
        show({400, 300});
        map->setRegion({{0, 0}, {10, 10}});
        settle();
    }
    Overlay here = line({{0, 0}, {1, 1}}).overlay;
    Overlay there = line({{60, 100}, {61, 101}}).overlay;
};

using Overlays = std::vector<Overlay>;

} // namespace

TEST_F(MKMapViewOverlays, TheDelegateIsAskedWhenAnOverlayFirstMeetsTheVisibleArea) {
    showHere();
    map->addOverlays({there, here});
    settle();
    EXPECT_EQ(overlayDelegate->asked, Overlays{here});
    map->setCenterCoordinate({60, 100});
    settle();
    EXPECT_EQ(overlayDelegate->asked, (Overlays{here, there}));
    map->setCenterCoordinate({0, 0});
    settle();
    EXPECT_EQ(overlayDelegate->asked.size(), 2u);
    EXPECT_EQ(overlayDelegate->reported, (std::vector<Overlays>{{here}, {there}}));
}

TEST_F(MKMapViewOverlays, NothingIsAskedBeforeTheFirstLayout) {
    map->addOverlay(here);
    runQueue();
    EXPECT_TRUE(overlayDelegate->asked.empty());
    window->setSize({400, 300}, 1);
    runQueue(); // and no frame is needed for it
    EXPECT_EQ(overlayDelegate->asked, Overlays{here});
}

TEST_F(MKMapViewOverlays, AHiddenMapIsAskedForItsOverlaysToo) {
    showHere();
    window->setVisible(false);
    map->addOverlay(here);
    runQueue();
    EXPECT_EQ(overlayDelegate->reported, (std::vector<Overlays>{{here}}));
}

TEST_F(MKMapViewOverlays, AGrowingViewMeetsMore) {
    show({100, 100});
    map->setRegion({{0, 0}, {10, 10}});
    const Overlay aside = line({{0, 12}, {1, 13}}).overlay;
    map->addOverlay(aside);
    settle();
    EXPECT_TRUE(overlayDelegate->asked.empty());
    window->setSize({400, 100}, 1);
    settle();
    EXPECT_EQ(overlayDelegate->asked, Overlays{aside});
}

TEST_F(MKMapViewOverlays, AnOverlayAcrossTheAntimeridianIsMetFromTheOtherSide) {
    show({400, 300});
    map->setRegion({{0, -179}, {10, 10}});
    const Overlay across = line({{0, 170}, {0, 185}}).overlay;
    map->addOverlay(across);
    settle();
    EXPECT_EQ(overlayDelegate->reported, (std::vector<Overlays>{{across}}));
}

TEST_F(MKMapViewOverlays, ViewsAddedInOneTurnAreReportedTogetherInDrawingOrder) {
    showHere();
    const Overlay a = line({{0, 0}, {1, 1}}).overlay, b = line({{0, 0}, {1, 1}}).overlay;
    map->addOverlay(a);
    map->addOverlays({b, here});
    map->exchangeOverlayAtIndexWithOverlayAtIndex(0, 2);
    EXPECT_TRUE(overlayDelegate->asked.empty());
    settle();
    EXPECT_EQ(overlayDelegate->reported, (std::vector<Overlays>{{here, b, a}}));
}

TEST_F(MKMapViewOverlays, AnOverlayWithoutAViewIsNotReportedAndNotAskedForAgain) {
    showHere();
    overlayDelegate->views.clear();
    map->addOverlay(here);
    settle();
    map->setRegion({{0, 0}, {20, 20}});
    settle();
    EXPECT_EQ(overlayDelegate->asked, Overlays{here});
    EXPECT_TRUE(overlayDelegate->reported.empty());
}

TEST_F(MKMapViewOverlays, AnOverlayTakenAwayInTheSameTurnIsNotAskedFor) {
    showHere();
    map->addOverlay(here);
    map->removeOverlay(here);
    settle();
    EXPECT_TRUE(overlayDelegate->asked.empty());
    EXPECT_TRUE(overlayDelegate->reported.empty());
}

TEST_F(MKMapViewOverlays, AnOverlayThatComesBackIsAskedForAgain) {
    showHere();
    map->addOverlay(here);
    settle();
    map->removeOverlay(here);
    map->addOverlay(here);
    settle();
    EXPECT_EQ(overlayDelegate->reported, (std::vector<Overlays>{{here}, {here}}));
}

TEST_F(MKMapViewOverlays, ADelegateMayTakeOverlaysAwayWhileItIsAsked) {
    showHere();
    const Overlay other = line({{0, 0}, {1, 1}}).overlay;
    overlayDelegate->onAsked = [&](const Overlay&) { map->removeOverlays({here, other}); };
    map->addOverlays({here, other});
    settle();
    EXPECT_EQ(overlayDelegate->asked, Overlays{here});
    EXPECT_TRUE(overlayDelegate->reported.empty());
    EXPECT_TRUE(map->overlays().empty());
}

TEST_F(MKMapViewOverlays, TheOrderIsThatOfTheOperations) {
    const Overlay a = line({}).overlay, b = line({}).overlay, c = line({}).overlay, d = line({}).overlay;
    map->addOverlay(a);
    map->insertOverlayAtIndex(b, 0);
    map->insertOverlayAboveOverlay(c, b);
    map->insertOverlayBelowOverlay(d, b);
    EXPECT_EQ(map->overlays(), (Overlays{d, b, c, a}));
    map->removeOverlays({b, nullptr, here});
    map->addOverlays({a, b, nullptr});
    EXPECT_EQ(map->overlays(), (Overlays{d, c, a, b}));
    map->exchangeOverlayAtIndexWithOverlayAtIndex(0, 3);
    EXPECT_EQ(map->overlays(), (Overlays{b, c, a, d}));
}

TEST_F(MKMapViewOverlays, ExchangingBeyondTheListIsLogged) {
    map->addOverlays({here, there});
    const CapturedLog log;
    map->exchangeOverlayAtIndexWithOverlayAtIndex(0, 5);
    EXPECT_EQ(map->overlays(), (Overlays{here, there}));
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0], "message: MKMapView: there are no two overlays at the indexes 0 and 5 to exchange");
}

TEST_F(MKMapViewOverlays, TheMapIsIdleOnlyWhenItsOverlaysAreDrawn) {
    showHere();
    map->addOverlay(here);
    EXPECT_FALSE(window->isIdle());
    settle();
    EXPECT_NE(pixelAt({0.5, 0.5}), 0xffffffU);
    EXPECT_FALSE(window->needsFrame());
    EXPECT_TRUE(frame().empty());
    map->removeOverlay(here);
    EXPECT_FALSE(window->isIdle());
    settle();
    EXPECT_EQ(pixelAt({0.5, 0.5}), 0xffffffU);
}

TEST_F(MKMapViewOverlays, TheHostHearsThatTheMapIsIdleWhenNothingOfAnOverlayCanBeSeen) {
    showHere();
    int idle = 0;
    window->setIdleHandler([&] { ++idle; });
    for (const auto& unseen : {line({{0, -20}, {20, 20}, {20, -20}}).overlay, line({{0, 0}}).overlay}) {
        idle = 0;
        map->addOverlay(unseen); // its bounds meet the visible area, its line does not
        for (int wait = 0; wait < 2000 && idle == 0; ++wait) {
            if (window->needsFrame()) {
                frame();
            }
            runQueue();
            g_usleep(1000);
        }
        EXPECT_EQ(idle, 1);
        EXPECT_TRUE(window->isIdle());
    }
}

TEST_F(MKMapViewOverlays, AMapThatGoesWhileItsOverlaysAreDrawnLeavesNothingBehind) {
    showHere();
    map->addOverlay(here);
    runQueue();
    frame();
    const std::weak_ptr<MKOverlay> overlay = here;
    overlayDelegate->views.clear();
    overlayDelegate->asked.clear();
    overlayDelegate->reported.clear();
    here.reset();
    window.reset();
    host.reset();
    map.reset();
    for (int wait = 0; wait < 1000 && !overlay.expired(); ++wait) {
        runQueue();
        g_usleep(1000);
    }
    EXPECT_TRUE(overlay.expired());
    window = UIWindow::make();
}

} // namespace veyra
