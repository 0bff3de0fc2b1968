#include "Platform/MapKit/MKGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>
#include <unistd.h>

namespace veyra {

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

struct Vector {
    MKMapPoint point;
    CLLocationCoordinate2D coordinate;
};
const Vector vectors[] = {
    {{3145728, 2097152}, {84.8024737243345, -175.78125}},
    {{3407872, 2359296}, {84.7705283207591, -175.4296875}},
    {{133094305.64442337, 87506967.062840745}, {52.948619248797378, -1.5066267848297628}},
};

} // namespace

TEST(MKGeometry, ProjectsKnownPlaces) {
    for (const Vector& vector : vectors) {
        const MKMapPoint point = MKMapPointForCoordinate(vector.coordinate);
        EXPECT_NEAR(point.x, vector.point.x, 1e-6);
        EXPECT_NEAR(point.y, vector.point.y, 1e-5); // the latitudes have 13 decimals, 1e-6 of a map point
        const CLLocationCoordinate2D coordinate = MKCoordinateForMapPoint(vector.point);
        EXPECT_NEAR(coordinate.latitude, vector.coordinate.latitude, 1e-12);
        EXPECT_NEAR(coordinate.longitude, vector.coordinate.longitude, 1e-12);
    }
}

TEST(MKGeometry, AgreesWithProjOnAThousandRandomPlaces) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> latitude(-85.05, 85.05), longitude(-180, 180);
    std::vector<CLLocationCoordinate2D> places;
    const std::string input = "/tmp/veyra-proj-" + std::to_string(getpid());
    {
        std::ofstream file(input);
        file.precision(17);
        for (int i = 0; i < 1000; ++i) {
            places.push_back({latitude(random), longitude(random)});
            file << places.back().longitude << ' ' << places.back().latitude << '\n';
        }
    }
    FILE* const pipe = popen(("proj -f %.12f +proj=webmerc +R=1 +over " + input).c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    size_t compared = 0;
    double x = 0, y = 0;
    while (fscanf(pipe, "%lf %lf", &x, &y) == 2) {
        ASSERT_LT(compared, places.size());
        const MKMapPoint point = MKMapPointForCoordinate(places[compared++]);
        EXPECT_NEAR(point.x, (x / (2 * M_PI) + 0.5) * MKWorldSide, 1e-3);
        EXPECT_NEAR(point.y, (0.5 - y / (2 * M_PI)) * MKWorldSide, 1e-3);
    }
    pclose(pipe);
    unlink(input.c_str());
    EXPECT_EQ(compared, places.size());
}

TEST(MKGeometry, ClampsLatitudesAndLeavesLongitudes) {
    EXPECT_NEAR(MKMapPointForCoordinate({90, 0}).y, 0, 1e-6);
    EXPECT_NEAR(MKMapPointForCoordinate({-90, 0}).y, MKWorldSide, 1e-6);
    EXPECT_EQ(MKMapPointForCoordinate({1e300, 0}).y, MKMapPointForCoordinate({MKMaximumLatitude, 0}).y);
    EXPECT_EQ(MKMapPointForCoordinate({0, 540}).x, 2 * MKWorldSide);
    EXPECT_EQ(MKCoordinateForMapPoint({-MKWorldSide, MKWorldSide / 2}).longitude, -540);
}

TEST(MKGeometry, KeepsNotANumber) {
    EXPECT_TRUE(std::isnan(MKMapPointForCoordinate({notANumber, 0}).y));
    EXPECT_EQ(MKMapPointForCoordinate({notANumber, 0}).x, MKWorldSide / 2);
    EXPECT_TRUE(std::isnan(MKMapPointForCoordinate({0, notANumber}).x));
    EXPECT_TRUE(std::isnan(MKCoordinateForMapPoint({0, notANumber}).latitude));
}

TEST(MKGeometry, KnowsTheMetresOfAMapPoint) {
    const double observed[] = {0.123522, 0.123379, 0.123236, 0.123092};
    for (int i = 0; i < 4; ++i) {
        const double latitude = 33.861315 + 0.1 * i;
        EXPECT_NEAR(MKMetersPerMapPointAtLatitude(latitude) / observed[i], 1, 3e-5);
        EXPECT_DOUBLE_EQ(MKMapPointsPerMeterAtLatitude(latitude), 1 / MKMetersPerMapPointAtLatitude(latitude));
    }
    EXPECT_NEAR(MKMetersPerMapPointAtLatitude(0), 0.14829, 5e-6);
}

TEST(MKMapRect, NullIsEmptyAndAddsNothingToAUnion) {
    const MKMapRect some = MKMapRectMake(1, 2, 3, 4);
    EXPECT_TRUE(MKMapRectIsNull(MKMapRectNull));
    EXPECT_TRUE(std::isinf(MKMapRectNull.origin.x) && std::isinf(MKMapRectNull.origin.y));
    EXPECT_EQ(MKMapRectNull.size, (MKMapSize{0, 0}));
    EXPECT_TRUE(MKMapRectIsEmpty(MKMapRectNull));
    EXPECT_EQ(MKMapRectUnion(MKMapRectNull, some), some);
    EXPECT_EQ(MKMapRectUnion(some, MKMapRectNull), some);
    EXPECT_FALSE(MKMapRectContainsPoint(MKMapRectNull, {0, 0}));
    EXPECT_FALSE(MKMapRectContainsRect(some, MKMapRectNull));
}

TEST(MKMapRect, IsEmptyOnlyWhenBothSidesAreZero) {
    EXPECT_TRUE(MKMapRectIsEmpty(MKMapRectMake(5, 5, 0, 0)));
    EXPECT_FALSE(MKMapRectIsEmpty(MKMapRectMake(5, 5, 1, 0)));
    EXPECT_FALSE(MKMapRectIsEmpty(MKMapRectMake(5, 5, 0, 1)));
    EXPECT_FALSE(MKMapRectIsNull(MKMapRectMake(5, 5, 0, 0)));
}

TEST(MKMapRect, UnitesAndIntersects) {
    const MKMapRect a = MKMapRectMake(0, 0, 10, 10), b = MKMapRectMake(6, 8, 10, 10);
    EXPECT_EQ(MKMapRectUnion(a, b), MKMapRectMake(0, 0, 16, 18));
    EXPECT_EQ(MKMapRectIntersection(a, b), MKMapRectMake(6, 8, 4, 2));
    EXPECT_TRUE(MKMapRectIntersectsRect(a, b));
}

TEST(MKMapRect, RectanglesThatTouchAreApart) {
    const MKMapRect a = MKMapRectMake(0, 0, 10, 10), touching = MKMapRectMake(10, 0, 5, 5);
    EXPECT_FALSE(MKMapRectIntersectsRect(a, touching));
    EXPECT_TRUE(MKMapRectIsNull(MKMapRectIntersection(a, touching)));
    EXPECT_TRUE(MKMapRectIsNull(MKMapRectIntersection(a, MKMapRectMake(50, 50, 1, 1))));
    EXPECT_TRUE(MKMapRectIsNull(MKMapRectIntersection(a, MKMapRectNull)));
}

TEST(MKMapRect, ContainsItsNorthernAndWesternEdges) {
    const MKMapRect rect = MKMapRectMake(0, 0, 10, 10);
    EXPECT_TRUE(MKMapRectContainsPoint(rect, {0, 0}));
    EXPECT_FALSE(MKMapRectContainsPoint(rect, {10, 5}));
    EXPECT_FALSE(MKMapRectContainsPoint(rect, {5, 10}));
    EXPECT_TRUE(MKMapRectContainsRect(rect, rect));
    EXPECT_FALSE(MKMapRectContainsRect(rect, MKMapRectMake(5, 5, 6, 1)));
}

TEST(MKMapRect, KnowsWhenItRunsPastTheAntimeridian) {
    EXPECT_FALSE(MKMapRectSpans180thMeridian(MKMapRectWorld));
    EXPECT_TRUE(MKMapRectSpans180thMeridian(MKMapRectMake(-1, 0, 10, 10)));
    EXPECT_TRUE(MKMapRectSpans180thMeridian(MKMapRectMake(MKWorldSide - 5, 0, 10, 10)));
    EXPECT_FALSE(MKMapRectSpans180thMeridian(MKMapRectNull));
}

TEST(MKMapRect, InsetsAndOffsets) {
    EXPECT_EQ(MKMapRectInset(MKMapRectMake(0, 0, 10, 10), 1, 2), MKMapRectMake(1, 2, 8, 6));
    EXPECT_EQ(MKMapRectOffset(MKMapRectMake(0, 0, 10, 10), 1, -2), MKMapRectMake(1, -2, 10, 10));
}

TEST(MKCoordinateRegion, OfAMapRectHasTheUnprojectedMidpointAndEdges) {
    const MKMapRect rect = MKMapRectMake(1e8, 6e7, 3e7, 2e7);
    const MKCoordinateRegion region = MKCoordinateRegionForMapRect(rect);
    const CLLocationCoordinate2D middle = MKCoordinateForMapPoint({1.15e8, 7e7});
    EXPECT_DOUBLE_EQ(region.center.latitude, middle.latitude);
    EXPECT_DOUBLE_EQ(region.center.longitude, middle.longitude);
    EXPECT_DOUBLE_EQ(region.span.latitudeDelta,
                     MKCoordinateForMapPoint({1e8, 6e7}).latitude - MKCoordinateForMapPoint({1e8, 8e7}).latitude);
    EXPECT_NEAR(region.span.longitudeDelta, 3e7 / MKWorldSide * 360, 1e-12);
}

TEST(MKCoordinateRegion, GivesItsMapRectBack) {
    const MKMapRect rects[] = {MKMapRectMake(1e8, 6e7, 3e7, 2e7), MKMapRectMake(-5e7, 0, MKWorldSide, 1e8),
                               MKMapRectMake(2e8, 2.6e8, 100, 7), MKMapRectWorld};
    for (const MKMapRect& rect : rects) {
        const MKMapRect back = MKMapRectForCoordinateRegion(MKCoordinateRegionForMapRect(rect));
        EXPECT_NEAR(back.origin.x, rect.origin.x, 1e-3);
        EXPECT_NEAR(back.origin.y, rect.origin.y, 1e-3);
        EXPECT_NEAR(back.size.width, rect.size.width, 1e-3);
        EXPECT_NEAR(back.size.height, rect.size.height, 1e-3);
    }
}

TEST(MKCoordinateRegion, WithSpansOutOfRangeIsCutOff) {
    EXPECT_EQ(MKMapRectForCoordinateRegion({{0, 0}, {-5, -5}}).size, (MKMapSize{0, 0}));
    const MKMapRect widest = MKMapRectForCoordinateRegion({{0, 0}, {1e9, 1e9}});
    EXPECT_EQ(widest.size.width, MKWorldSide);
    EXPECT_EQ(widest.size.height, 2 * MKWorldSide);
}

TEST(MKCoordinateRegion, HasItsCornersInDegrees) {
    CLLocationCoordinate2D northWest, southEast;
    MKCoordinatesForRegion({{10, 20}, {4, 6}}, &northWest, &southEast);
    EXPECT_EQ(northWest.latitude, 12);
    EXPECT_EQ(northWest.longitude, 17);
    EXPECT_EQ(southEast.latitude, 8);
    EXPECT_EQ(southEast.longitude, 23);
}

TEST(MKCoordinateRegion, IsFiniteOnlyWithFourFiniteNumbers) {
    EXPECT_TRUE(MKCoordinateRegionIsFinite({{1, 2}, {3, 4}}));
    EXPECT_FALSE(MKCoordinateRegionIsFinite({{notANumber, 2}, {3, 4}}));
    EXPECT_FALSE(MKCoordinateRegionIsFinite({{1, infinite}, {3, 4}}));
    EXPECT_FALSE(MKCoordinateRegionIsFinite({{1, 2}, {-infinite, 4}}));
    EXPECT_FALSE(MKCoordinateRegionIsFinite({{1, 2}, {3, notANumber}}));
}

} // namespace veyra
