// What is drawn of annotations, to the pixel, and how little is drawn anew when one changes.
#include "Tests/Platform/MapKit/AnnotationFixture.h"

#include "Platform/CoreLocation/CLLocation.h"
#include "Platform/MapKit/MKUserLocation.h"

#include <cairo.h>

#include <random>

namespace veyra {

namespace {

constexpr uint32_t ground = 0x00ff00;

class AnnotationDrawing : public AnnotationTest {
protected:
    /// Plain views of 10 x 10 points in the colour that the annotation's name tells.
    AnnotationDrawing() {
        delegate->makeView = [this](MKMapView&, const std::shared_ptr<MKAnnotation>& annotation) {
            auto view = MKAnnotationView::initWithAnnotationReuseIdentifier(annotation, std::nullopt);
            const auto named = std::dynamic_pointer_cast<TestAnnotation>(annotation);
            view->setImage(named && named->name == "red" ? red : blue);
            return view;
        };
    }
    std::vector<uint32_t> picture() const {
        cairo_surface_flush(window->surface());
        std::vector<uint32_t> pixels;
        for (int y = 0; y < window->pixelHeight(); ++y) {
            for (int x = 0; x < window->pixelWidth(); ++x) {
                pixels.push_back(pixelAt(x, y));
            }
        }
        return pixels;
    }
    void addMany(int count) {
        std::mt19937 random(11);
        for (int i = 0; i < count; ++i) {
            add(i % 2 ? "red" : "blue", {random() % 300 / 10.0 - 15, random() % 800 / 10.0 - 40});
        }
    }
    /// What the window looks like when all is drawn from nothing.
    std::vector<uint32_t> pictureDrawnAnew() {
        const CGSize size = window->bounds().size;
        window->setSize({size.width + 1, size.height}, 1);
        window->setSize(size, 2);
        window->setSize(size, 1);
        settle();
        return picture();
    }

    const std::shared_ptr<UIImage> red = makeImage(10, 10, 0xffff0000), blue = makeImage(10, 10, 0xff0000ff);
};

} // namespace

TEST_F(AnnotationDrawing, AnImageIsCentredOnItsCoordinate) {
    showAround();
    add("red", {0, 0});
    settle();
    EXPECT_EQ(pixelAt(195, 145), 0xff0000U);
    EXPECT_EQ(pixelAt(204, 154), 0xff0000U);
    EXPECT_EQ(pixelAt(194, 145), ground);
    EXPECT_EQ(pixelAt(205, 154), ground);
}

TEST_F(AnnotationDrawing, AnImageIsMovedByItsCenterOffset) {
    showAround();
    const auto a = add("red", {0, 0});
    settle();
    map->viewForAnnotation(a)->setCenterOffset({20, -30});
    settle();
    EXPECT_EQ(pixelAt(200, 150), ground);
    EXPECT_EQ(pixelAt(215, 115), 0xff0000U);
    EXPECT_EQ(pixelAt(224, 124), 0xff0000U);
    EXPECT_EQ(map->viewForAnnotation(a)->frame(), (CGRect{{215, 115}, {10, 10}}));
    map->viewForAnnotation(a)->setCenterOffset({INFINITY, std::nan("")});
    EXPECT_EQ(map->viewForAnnotation(a)->centerOffset(), CGPoint());
}

TEST_F(AnnotationDrawing, SettingTheImageResizesTheView) {
    showAround();
    const auto a = add("red", {0, 0});
    settle();
    map->viewForAnnotation(a)->setImage(makeImage(30, 20, 0xff0000ff));
    EXPECT_EQ(map->viewForAnnotation(a)->frame(), (CGRect{{185, 140}, {30, 20}}));
    settle();
    EXPECT_EQ(pixelAt(186, 141), 0x0000ffU);
    map->viewForAnnotation(a)->setImage(nullptr);
    settle();
    EXPECT_EQ(pixelAt(200, 150), ground);
}

TEST_F(AnnotationDrawing, AnImageHasItsSizeInPointsOnEveryDisplay) {
    showAround({0, 0}, {400, 300}, 2);
    const auto a = add("red", {0, 0});
    map->viewForAnnotation(a)->setImage(makeImage(20, 20, 0xff0000ff, 2));
    settle();
    EXPECT_EQ(map->viewForAnnotation(a)->frame(), (CGRect{{195, 145}, {10, 10}}));
    EXPECT_EQ(pixelAt(390, 290), 0x0000ffU);
    EXPECT_EQ(pixelAt(409, 309), 0x0000ffU);
    EXPECT_EQ(pixelAt(410, 309), ground);
    map->viewForAnnotation(a)->setImage(red); // one pixel a point: drawn twice as large
    settle();
    EXPECT_EQ(pixelAt(409, 309), 0xff0000U);
    EXPECT_EQ(pixelAt(410, 309), ground);
}

TEST_F(AnnotationDrawing, TheFurtherSouthIsInFront) {
    showAround();
    add("red", {0, 0});
    add("blue", {0.3, 0.3});
    settle();
    EXPECT_EQ(pixelAt(203, 150), 0xff0000U);
    EXPECT_EQ(pixelAt(206, 143), 0x0000ffU);
}

TEST_F(AnnotationDrawing, TheSelectedIsInFrontOfAll) {
    showAround();
    add("red", {0, 0});
    const auto north = add("blue", {0.3, 0.3});
    map->selectAnnotationAnimated(north, false);
    settle();
    EXPECT_EQ(pixelAt(203, 150), 0x0000ffU);
    map->deselectAnnotationAnimated(north, false);
    settle();
    EXPECT_EQ(pixelAt(203, 150), 0xff0000U);
}

TEST_F(AnnotationDrawing, IsOnEveryCopyOfTheWorld) {
    window->setSize({1000, 300}, 1);
    map->setRegion({{0, 0}, {100, 360}});
    settle();
    add("red", {0, 178});
    settle();
    const double x = map->convertCoordinateToPointToView({0, 178}, nullptr).x;
    EXPECT_EQ(pixelAt(static_cast<int>(x), 150), 0xff0000U);
    EXPECT_EQ(pixelAt(0, 150), ground); // 5.6 pixels to the left of the edge, 10 wide
    map->setCenterCoordinate({0, 170});
    settle();
    const double left = map->convertCoordinateToPointToView({0, 178}, nullptr).x;
    EXPECT_EQ(pixelAt(static_cast<int>(left), 150), 0xff0000U);
}

TEST_F(AnnotationDrawing, AMovedMapLooksAsIfItHadBeenDrawnAnew) {
    showAround();
    addMany(3000);
    settle();
    for (const CLLocationCoordinate2D center :
         {CLLocationCoordinate2DMake(0.4, 3.3), CLLocationCoordinate2DMake(-7.9, 11.1),
          CLLocationCoordinate2DMake(2.2, -20.7)}) {
        map->setCenterCoordinate(center);
        settle();
        const auto moved = picture();
        EXPECT_EQ(moved, pictureDrawnAnew());
    }
}

TEST_F(AnnotationDrawing, ChangesLookAsIfAllHadBeenDrawnAnew) {
    showAround();
    addMany(600);
    settle();
    std::mt19937 random(2);
    for (int i = 0; i < 40; ++i) {
        const auto all = map->annotations();
        const auto one = std::dynamic_pointer_cast<TestAnnotation>(all[random() % all.size()]);
        const auto view = map->viewForAnnotation(one);
        switch (view ? random() % 5 : 5) {
        case 0:
            map->removeAnnotation(one);
            break;
        case 1:
            view->setImage(random() % 2 ? red : blue);
            break;
        case 2:
            view->setCenterOffset({random() % 40 - 20.0, random() % 40 - 20.0});
            break;
        case 3:
            map->selectAnnotationAnimated(one, false);
            break;
        default:
            one->position.latitude += 1;
            map->annotationCoordinateDidChange(one);
        }
        frame();
    }
    settle();
    const auto changed = picture();
    EXPECT_EQ(changed, pictureDrawnAnew());
}

TEST_F(AnnotationDrawing, AChangeBeforeTheFirstFrameOfAnotherScaleSeesNothingOfTheFormerOne) {
    showAround();
    for (const bool arePins : {false, true}) {
        if (arePins) {
            delegate->makeView = nullptr;
        }
        addMany(20);
        const auto a = add("red", {0, 0});
        settle();
        for (const double scale : {2.0, 1.0}) {
            window->setSize({400, 300}, scale);
            const auto view = map->viewForAnnotation(a);
            view->setCenterOffset({view->centerOffset().x + 5, 0});
            tap({205, 150});
            settle();
        }
        const auto changed = picture();
        EXPECT_EQ(changed, pictureDrawnAnew());
    }
}

TEST_F(AnnotationDrawing, AnAddedViewDrawsNoMoreThanItself) {
    showAround();
    addMany(50);
    settle();
    add("red", {0, 0});
    runQueue();
    const auto damage = frame();
    ASSERT_EQ(damage.size(), 1U);
    EXPECT_EQ(damage.front(), (PixelRect{195, 145, 10, 10}));
}

TEST_F(AnnotationDrawing, NothingIsDrawnWhileNothingChanges) {
    showAround();
    addMany(50);
    settle();
    EXPECT_FALSE(window->needsFrame());
    EXPECT_TRUE(frame().empty());
}

TEST_F(AnnotationDrawing, WhatIsChangedInAHiddenWindowIsThereWhenItIsShown) {
    showAround();
    window->setVisible(false);
    for (int i = 0; i < 300; ++i) {
        add("red", {0, 0});
    }
    const auto last = add("blue", {-0.1, 0});
    runQueue();
    window->setVisible(true);
    settle();
    EXPECT_EQ(pixelAt(200, 150), 0x0000ffU);
    map->removeAnnotation(last);
    settle();
    EXPECT_EQ(pixelAt(200, 150), 0xff0000U);
}

TEST_F(AnnotationDrawing, APinsTipIsOnItsCoordinate) {
    for (const double scale : {1.0, 1.25, 2.0, 3.0}) {
        map->removeAnnotations(map->annotations());
        showAround({0, 0}, {400, 300}, scale);
        delegate->makeView = [](MKMapView&, const auto&) { return nullptr; };
        add("pin", {0, 0});
        settle();
        const int x = static_cast<int>(std::lround(200 * scale)), y = static_cast<int>(std::lround(150 * scale));
        // The body a point above the tip, symmetric to the point's vertical line; the head above.
        EXPECT_NE(pixelAt(x, y - static_cast<int>(std::ceil(2 * scale))), ground);
        EXPECT_EQ(pixelAt(x, y - static_cast<int>(38 * scale)), ground);
        EXPECT_NE(pixelAt(x, y - static_cast<int>(35 * scale)), ground);
        for (int rise = 4; rise < 30; ++rise) {
            const int row = y - static_cast<int>(rise * scale);
            int left = 0, right = 0;
            while (pixelAt(x - 1 - left, row) != ground) {
                ++left;
            }
            while (pixelAt(x + right, row) != ground) {
                ++right;
            }
            EXPECT_NEAR(left, right, 1) << "scale " << scale << ", " << rise << " points above the tip";
        }
    }
}

TEST_F(AnnotationDrawing, TheCircleOfAccuracyHasItsRadiusOnTheGround) {
    showAround({60, 20}, {400, 300}, 1);
    map->setRegion({{60, 20}, {0.02, 0.001}});
    settle();
    delegate->makeView = [](MKMapView&, const auto&) { return nullptr; };
    const auto location = std::make_shared<MKUserLocation>();
    const double metres = 400;
    location->setLocation(std::make_shared<CLLocation>(CLLocationCoordinate2DMake(60, 20), 0, metres, -1));
    map->addAnnotation(location);
    settle();
    // Metres of a degree of latitude at 60 degrees north on the ellipsoid.
    const double degrees = metres / 111412.0;
    const double top = map->convertCoordinateToPointToView({60 + degrees, 20}, nullptr).y;
    ASSERT_GT(top, 10);
    ASSERT_LT(top, 130);
    EXPECT_NE(pixelAt(200, static_cast<int>(top) + 2), ground);
    EXPECT_EQ(pixelAt(200, static_cast<int>(top) - 3), ground);
    location->setLocation(std::make_shared<CLLocation>(CLLocationCoordinate2DMake(60, 20), 0, -1, -1));
    map->annotationCoordinateDidChange(location);
    settle();
    EXPECT_EQ(pixelAt(200, static_cast<int>(top) + 2), ground);
    EXPECT_NE(pixelAt(200, 150), ground);
    map->removeAnnotation(location);
    settle();
    EXPECT_EQ(pixelAt(200, 150), ground);
}

} // namespace veyra
