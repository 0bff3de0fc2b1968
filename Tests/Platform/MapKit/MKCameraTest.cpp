#include "Platform/MapKit/MKCamera.h"
#include "Platform/MapKit/MKCameraAnimation.h"
#include "Platform/MapKit/MKMapView.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace veyra {

namespace {

constexpr CGSize viewSize{1024, 768};

MKCoordinateRegion fitted(const MKCoordinateRegion& region, CGSize size = viewSize) {
    return MKMapView::regionThatFitsMapTypeViewSizeRegion(MKMapTypeStandard, size, region);
}

void expectSame(const MKCoordinateRegion& a, const MKCoordinateRegion& b, double tolerance) {
    EXPECT_NEAR(a.center.latitude, b.center.latitude, tolerance);
    EXPECT_NEAR(a.center.longitude, b.center.longitude, tolerance);
    EXPECT_NEAR(a.span.latitudeDelta, b.span.latitudeDelta, tolerance);
    EXPECT_NEAR(a.span.longitudeDelta, b.span.longitudeDelta, tolerance);
}

} // namespace

TEST(RegionThatFits, WidensOnlyTheSpanThatIsTooSmall) {
    const MKCoordinateRegion tall = fitted({{48, 16}, {2, 0.1}});
    EXPECT_NEAR(tall.center.latitude, 48, 1e-10);
    EXPECT_NEAR(tall.center.longitude, 16, 1e-10);
    // As far as its farther edge: the northern one, which is shown at the very top.
    const MKMapRect tallRect = MKMapRectForCoordinateRegion(tall);
    EXPECT_NEAR(MKCoordinateForMapPoint(tallRect.origin).latitude, 49, 1e-9);
    EXPECT_NEAR(MKCoordinateForMapPoint({0, MKMapRectGetMaxY(tallRect)}).latitude, 46.98, 0.005);
    EXPECT_GT(tall.span.longitudeDelta, 2);
    const MKCoordinateRegion wide = fitted({{48, 16}, {0.1, 2}});
    EXPECT_NEAR(wide.span.longitudeDelta, 2, 1e-10);
    EXPECT_GT(wide.span.latitudeDelta, 0.1);
    const MKMapRect rect = MKMapRectForCoordinateRegion(wide);
    EXPECT_NEAR(rect.size.width / rect.size.height, 1024.0 / 768, 1e-9);
}

TEST(RegionThatFits, ShowsTheWholeRequestAtItsCentre) {
    for (const double latitude : {-60.0, -35.0, 0.0, 12.5, 50.0}) {
        for (const double span : {1e-3, 0.5, 8.0, 40.0}) {
            for (const double longitudeSpan : {1e-3, 1.0, 50.0}) {
                const MKCoordinateRegion region{{latitude, 10}, {span, longitudeSpan}};
                const MKMapRect shown = MKCamera::fitting(region, viewSize).visibleMapRect(viewSize);
                CLLocationCoordinate2D northWest, southEast;
                MKCoordinatesForRegion(region, &northWest, &southEast);
                const MKMapPoint first = MKMapPointForCoordinate(northWest), last = MKMapPointForCoordinate(southEast);
                const double tolerance = shown.size.width * 1e-9;
                EXPECT_LE(shown.origin.x, first.x + tolerance);
                EXPECT_LE(shown.origin.y, first.y + tolerance) << latitude << ' ' << span;
                EXPECT_GE(MKMapRectGetMaxX(shown), last.x - tolerance);
                EXPECT_GE(MKMapRectGetMaxY(shown), last.y - tolerance) << latitude << ' ' << span;
                EXPECT_NEAR(MKMapRectGetMidX(shown), MKMapPointForCoordinate(region.center).x, tolerance);
                EXPECT_NEAR(MKMapRectGetMidY(shown), MKMapPointForCoordinate(region.center).y, tolerance);
                // And no more than that: one pair of edges is met.
                const double spareX = (first.x - shown.origin.x) / shown.size.width;
                const double spareY =
                    std::min(first.y - shown.origin.y, MKMapRectGetMaxY(shown) - last.y) / shown.size.height;
                EXPECT_NEAR(std::min(spareX, spareY), 0, 1e-9) << latitude << ' ' << span << ' ' << longitudeSpan;
            }
        }
    }
}

TEST(RegionThatFits, ASpanOfZeroAsksForTheOtherOneAlone) {
    const MKCoordinateRegion tall = fitted({{48, 16}, {2, 0}});
    const MKMapRect tallRect = MKMapRectForCoordinateRegion(tall);
    EXPECT_NEAR(MKCoordinateForMapPoint(tallRect.origin).latitude, 49, 1e-9);
    const MKCoordinateRegion wide = fitted({{48, 16}, {0, 2}});
    EXPECT_NEAR(wide.span.longitudeDelta, 2, 1e-10);
    expectSame(fitted({{48, 16}, {-5, 2}}), wide, 1e-10);
}

TEST(RegionThatFits, TakesAnyFiniteNumbers) {
    const double huge = std::numeric_limits<double>::max(), tiny = std::numeric_limits<double>::denorm_min();
    for (const double latitude : {-huge, -tiny, huge}) {
        for (const double longitude : {-huge, tiny, huge}) {
            for (const double span : {-huge, 0.0, tiny, huge}) {
                const MKCoordinateRegion shown = fitted({{latitude, longitude}, {span, span}});
                EXPECT_TRUE(MKCoordinateRegionIsFinite(shown)) << latitude << ' ' << longitude << ' ' << span;
                EXPECT_GE(shown.center.longitude, -180);
                EXPECT_LT(shown.center.longitude, 180);
                EXPECT_LE(std::abs(shown.center.latitude), MKMaximumLatitude);
            }
        }
    }
}

TEST(RegionThatFits, KeepsARegionThatFitsAlready) {
    for (const double latitude : {-70.0, -10.0, 0.0, 48.0, 75.0}) {
        const MKCoordinateRegion once = fitted({{latitude, 170}, {8, 8}});
        expectSame(fitted(once), once, 1e-9);
    }
}

TEST(RegionThatFits, AnswersItsInputForAnEmptyView) {
    const MKCoordinateRegion region{{91, 200}, {500, -3}};
    expectSame(fitted(region, {0, 0}), region, 0);
    expectSame(fitted(region, {100, 0}), region, 0);
}

TEST(RegionThatFits, AnswersItsInputForValuesThatAreNotFinite) {
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(fitted({{1, 2}, {infinite, 4}}).span.latitudeDelta, infinite);
    EXPECT_EQ(fitted({{1, 2}, {infinite, 4}}).span.longitudeDelta, 4);
}

TEST(RegionThatFits, StaysBetweenTheZoomLimits) {
    const MKCoordinateRegion world = fitted({{0, 0}, {180, 360}});
    EXPECT_NEAR(world.span.longitudeDelta, 360, 1e-9);
    EXPECT_LE(world.span.longitudeDelta, 360);
    const MKCoordinateRegion point = fitted({{0, 0}, {0, 0}});
    EXPECT_NEAR(point.span.longitudeDelta, 512 / MKWorldSide * 360, 1e-12);
}

TEST(RegionThatFits, GivesWayAtThePoles) {
    const MKCoordinateRegion north = fitted({{90, 0}, {1, 1}});
    EXPECT_LT(north.center.latitude, MKMaximumLatitude);
    CLLocationCoordinate2D corner = MKCoordinateForMapPoint(MKMapRectForCoordinateRegion(north).origin);
    EXPECT_NEAR(corner.latitude, MKMaximumLatitude, 1e-7);
    const MKCoordinateRegion south = fitted({{-90, 0}, {1, 1}});
    EXPECT_NEAR(south.center.latitude, -north.center.latitude, 1e-9);
}

TEST(RegionThatFits, BringsTheLongitudeIntoTheWorld) {
    EXPECT_NEAR(fitted({{0, 540}, {1, 1}}).center.longitude, -180, 1e-9);
    EXPECT_NEAR(fitted({{0, 180}, {1, 1}}).center.longitude, -180, 1e-9);
    EXPECT_NEAR(fitted({{0, -190}, {1, 1}}).center.longitude, 170, 1e-9);
}

TEST(MKCamera, OutermostShowsTheWorldAlongTheLongerSide) {
    EXPECT_EQ(MKCamera::minimumScale({1024, 768}), 1024 / MKWorldSide);
    EXPECT_EQ(MKCamera::minimumScale({400, 800}), 800 / MKWorldSide);
}

TEST(MKCamera, NeverShowsWhatLiesBeyondTheSquare) {
    for (const double y : {-1e9, 0.0, MKWorldSide / 2, MKWorldSide, 1e9}) {
        for (const double scale : {0.0, 1e-5, 1e-3, 5.0}) {
            const MKMapRect visible = MKCamera{{0, y}, scale}.clamped(viewSize).visibleMapRect(viewSize);
            EXPECT_GE(visible.origin.y, -1e-6);
            EXPECT_LE(MKMapRectGetMaxY(visible), MKWorldSide + 1e-6);
        }
    }
}

TEST(MKCamera, NormalizesIntoTheWorld) {
    EXPECT_EQ((MKCamera{{-1, 5}, 1}.normalized().center.x), MKWorldSide - 1);
    EXPECT_EQ((MKCamera{{MKWorldSide, 5}, 1}.normalized().center.x), 0);
    EXPECT_EQ((MKCamera{{-1e-300, 5}, 1}.normalized().center.x), 0);
    EXPECT_EQ((MKCamera{{3 * MKWorldSide + 7, 5}, 1}.normalized().center.x), 7);
}

TEST(MKCamera, ScalesAboutAPoint) {
    const MKCamera camera{{1e8, 1e8}, 1e-3};
    const CGPoint anchor{200, 700};
    const MKMapPoint place = camera.mapPointAt(anchor, viewSize);
    const CGPoint after = camera.scaledTo(0.7, anchor, viewSize).pointFor(place, viewSize);
    EXPECT_NEAR(after.x, anchor.x, 1e-6);
    EXPECT_NEAR(after.y, anchor.y, 1e-6);
}

TEST(MKFlightPath, BeginsAndEndsWhereItShould) {
    const MKFlightPath path(5e7, 1000, 300000);
    EXPECT_NEAR(path.width(0), 1000, 1e-6);
    EXPECT_NEAR(path.travelled(0), 0, 1e-6);
    EXPECT_NEAR(path.width(path.length()) / 300000, 1, 1e-9);
    EXPECT_NEAR(path.travelled(path.length()) / 5e7, 1, 1e-9);
}

TEST(MKFlightPath, ZoomsOutOnTheWay) {
    const MKFlightPath path(1e8, 1000, 1000);
    EXPECT_GT(path.width(path.length() / 2), 1e6);
    EXPECT_NEAR(path.travelled(path.length() / 2), 5e7, 1);
}

TEST(MKCameraAnimation, EasesNearMovesInItsDuration) {
    const MKCamera from{{1e8, 1e8}, 1e-3}, to{{1e8 + 1e5, 1e8}, 1e-3};
    MKCameraAnimation animation(from, to, viewSize);
    EXPECT_FALSE(animation.isFlight());
    MKCamera camera = from;
    EXPECT_TRUE(animation.step(10, viewSize, camera));
    EXPECT_EQ(camera, from);
    EXPECT_TRUE(animation.step(10.1, viewSize, camera));
    EXPECT_GT(camera.center.x, from.center.x);
    EXPECT_LT(camera.center.x, to.center.x);
    EXPECT_TRUE(animation.step(10.349, viewSize, camera));
    EXPECT_FALSE(animation.step(10.3501, viewSize, camera));
    EXPECT_EQ(camera, to);
}

TEST(MKCameraAnimation, KeepsTheFixedPointOfAZoom) {
    const MKCamera from{{1e8, 1e8}, 1e-3};
    const CGPoint anchor{900, 100};
    const MKCamera to = from.scaledTo(2e-3, anchor, viewSize);
    const MKMapPoint place = from.mapPointAt(anchor, viewSize);
    MKCameraAnimation animation(from, to, viewSize, 0.3);
    MKCamera camera = from;
    for (double time = 0; time < 0.31; time += 0.01) {
        animation.step(time, viewSize, camera);
        EXPECT_NEAR(camera.pointFor(place, viewSize).x, anchor.x, 1e-6);
        EXPECT_NEAR(camera.pointFor(place, viewSize).y, anchor.y, 1e-6);
    }
}

TEST(MKCameraAnimation, FliesToFarPlacesInAtMostOneAndAHalfSeconds) {
    const MKCamera from{{1e8, 1e8}, 1}, to{{1.8e8, 9e7}, 0.5};
    MKCameraAnimation animation(from, to, viewSize);
    EXPECT_TRUE(animation.isFlight());
    EXPECT_GT(animation.duration(), MKCameraAnimation::nearDuration);
    EXPECT_LE(animation.duration(), MKCameraAnimation::longestFlight);
    MKCamera camera = from;
    animation.step(0, viewSize, camera);
    EXPECT_NEAR(camera.scale, from.scale, 1e-9);
    animation.step(animation.duration() / 2, viewSize, camera);
    EXPECT_LT(camera.scale, 0.01);
    EXPECT_FALSE(animation.step(1.5, viewSize, camera));
    EXPECT_EQ(camera, to);
}

TEST(MKCameraAnimation, TakesTheShortWayAcrossTheAntimeridian) {
    const MKCamera from{{MKWorldSide - 1000, 1e8}, 0.1}, to{{1000, 1e8}, 0.1};
    MKCameraAnimation animation(from, to, viewSize);
    EXPECT_EQ(animation.target().center.x, MKWorldSide + 1000);
    EXPECT_FALSE(animation.isFlight());
}

} // namespace veyra
