// The shapes that overlays are made of: places and extents.
#include "Platform/MapKit/MKCircle.h"
#include "Platform/MapKit/MKPolygon.h"
#include "Platform/MapKit/MKPolyline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace veyra {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(MKCircle, KeepsItsCentreAndRadiusAsGiven) {
    const auto circle = MKCircle::circleWithCenterCoordinateRadius({48.2, 16.4}, -500);
    EXPECT_EQ(circle->coordinate().latitude, 48.2);
    EXPECT_EQ(circle->coordinate().longitude, 16.4);
    EXPECT_EQ(circle->radius(), -500);
}

TEST(MKCircle, BoundsAreItsRadiusInMapPointsAroundItsCentre) {
    const auto circle = MKCircle::circleWithCenterCoordinateRadius({60, 20}, 10000);
    const double radius = 10000 * MKMapPointsPerMeterAtLatitude(60);
    const MKMapPoint center = MKMapPointForCoordinate({60, 20});
    const MKMapRect bounds = circle->boundingMapRect();
    EXPECT_DOUBLE_EQ(bounds.origin.x, center.x - radius);
    EXPECT_DOUBLE_EQ(bounds.origin.y, center.y - radius);
    EXPECT_DOUBLE_EQ(bounds.size.width, 2 * radius);
    EXPECT_DOUBLE_EQ(bounds.size.height, 2 * radius);
}

TEST(MKCircle, IsNowhereWithoutAPlaceOrARadius) {
    for (const CLLocationCoordinate2D center :
         {CLLocationCoordinate2D{notANumber, 0}, {0, notANumber}, {0, infinity}, {0, 1e308}}) {
        EXPECT_TRUE(MKMapRectIsNull(MKCircle(center, 1000).boundingMapRect()));
    }
    for (const double radius : {-1.0, -1e300, notANumber, infinity}) {
        EXPECT_TRUE(MKMapRectIsNull(MKCircle({0, 0}, radius).boundingMapRect())) << radius;
    }
}

TEST(MKCircle, BeyondTheProjectionHasTheScaleOfItsEdge) {
    const auto beyond = MKCircle::circleWithCenterCoordinateRadius({1e308, 0}, 1000);
    const auto edge = MKCircle::circleWithCenterCoordinateRadius({MKMaximumLatitude, 0}, 1000);
    EXPECT_EQ(beyond->boundingMapRect(), edge->boundingMapRect());
}

// North and south ends of circles by another program: `geod +ellps=WGS84`, from the centre at azimuths 0 and 180.
TEST(MKCircle, ReachesAsFarOnTheGroundAsGeodesicsDo) {
    struct Expected {
        double latitude, radius, north, south;
    };
    const Expected circles[] = {
        {0, 1000, 0.009043695, -0.009043695},         {0, 20000, 0.180873889, -0.180873889},
        {0, 100000, 0.904368723, -0.904368723},       {30, 1000, 30.009020995, 29.990978993},
        {30, 20000, 30.180417544, 29.819577508},      {30, 100000, 30.902037878, 29.097838410},
        {45, 1000, 45.008998319, 44.991001667},       {45, 20000, 45.179963679, 44.820030625},
        {45, 100000, 45.899761453, 44.100096175},     {60, 1000, 60.008975665, 59.991024323},
        {60, 20000, 60.179510958, 59.820484126},      {60, 100000, 60.897505999, 59.102371118},
        {70, 1000, 70.008963619, 69.991036372},       {70, 20000, 70.179270655, 69.820725703},
        {70, 100000, 70.896317405, 69.103591551},     {-52.5, 1000, -52.491013397, -52.508986590},
        {-52.5, 20000, -52.320265322, -52.679729186}, {-52.5, 100000, -51.601271510, -53.398591208},
    };
    for (const Expected& expected : circles) {
        const MKMapRect bounds = MKCircle({expected.latitude, 0}, expected.radius).boundingMapRect();
        const double north = MKCoordinateForMapPoint({0, MKMapRectGetMinY(bounds)}).latitude;
        const double south = MKCoordinateForMapPoint({0, MKMapRectGetMaxY(bounds)}).latitude;
        const double extent = expected.north - expected.south;
        EXPECT_NEAR(north - south, extent, extent * 0.001) << expected.latitude << ", " << expected.radius << " m";
    }
}

TEST(MKPolyline, HasThePointsOfItsCoordinatesInOrder) {
    const CLLocationCoordinate2D coordinates[] = {{37, -122}, {38, -121}};
    const auto line = MKPolyline::polylineWithCoordinates(coordinates);
    ASSERT_EQ(line->pointCount(), 2u);
    EXPECT_EQ(line->points()[0], MKMapPointForCoordinate({37, -122}));
    EXPECT_EQ(line->points()[1], MKMapPointForCoordinate({38, -121}));
    EXPECT_NEAR(line->coordinateAt(1).latitude, 38, 1e-9);
    EXPECT_NEAR(line->coordinateAt(1).longitude, -121, 1e-9);
}

TEST(MKPolyline, BoundsRunPastTheAntimeridianWithItsLongitudes) {
    const CLLocationCoordinate2D coordinates[] = {{10, 170}, {-10, 190}};
    const MKMapRect bounds = MKPolyline::polylineWithCoordinates(coordinates)->boundingMapRect();
    EXPECT_NEAR(MKMapRectGetMinX(bounds), 350.0 / 360 * MKWorldSide, 1e-6);
    EXPECT_NEAR(MKMapRectGetMaxX(bounds), 370.0 / 360 * MKWorldSide, 1e-6);
    EXPECT_TRUE(MKMapRectSpans180thMeridian(bounds));
}

TEST(MKPolyline, WithoutCoordinatesIsNowhere) {
    const auto line = MKPolyline::polylineWithCoordinates({});
    EXPECT_EQ(line->pointCount(), 0u);
    EXPECT_TRUE(MKMapRectIsNull(line->boundingMapRect()));
    EXPECT_EQ(line->coordinate().latitude, 0);
}

TEST(MKPolyline, CountsCoordinatesWithoutAPlaceAndLeavesThemOutOfItsBounds) {
    const CLLocationCoordinate2D coordinates[] = {{notANumber, 5}, {1, 2}, {3, infinity}, {3, 4}, {1, 1e308}};
    const auto line = MKPolyline::polylineWithCoordinates(coordinates);
    const CLLocationCoordinate2D rest[] = {{1, 2}, {3, 4}};
    EXPECT_EQ(line->pointCount(), 5u);
    EXPECT_EQ(line->boundingMapRect(), MKPolyline::polylineWithCoordinates(rest)->boundingMapRect());
}

TEST(MKPolygon, ItsCoordinateIsTheMiddleOfItsBounds) {
    const CLLocationCoordinate2D coordinates[] = {{10, 0}, {-10, 0}, {-10, 20}, {0, 40}};
    const auto coordinate = MKPolygon::polygonWithCoordinates(coordinates)->coordinate();
    EXPECT_NEAR(coordinate.latitude, 0, 1e-9);
    EXPECT_NEAR(coordinate.longitude, 20, 1e-9);
}

TEST(MKPolygon, LatitudesBeyondTheProjectionLieOnItsEdge) {
    const CLLocationCoordinate2D coordinates[] = {{1e308, 0}, {-1e308, 1}, {0, 2}};
    const MKMapRect bounds = MKPolygon::polygonWithCoordinates(coordinates)->boundingMapRect();
    EXPECT_NEAR(MKMapRectGetMinY(bounds), 0, 1e-3);
    EXPECT_NEAR(MKMapRectGetMaxY(bounds), MKWorldSide, 1e-3);
}

} // namespace veyra
