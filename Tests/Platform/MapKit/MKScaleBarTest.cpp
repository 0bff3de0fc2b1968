#include "Platform/MapKit/MKScaleBar.h"

#include "Tests/Platform/MapKit/MapFixture.h"

#include <cmath>

namespace veyra {

namespace {

class MKScaleBarTest : public MapTest {
protected:
    const MKScaleBar* bar() const {
        for (const auto& view : map->subviews()) {
            if (const auto* found = dynamic_cast<const MKScaleBar*>(view.get())) {
                return found;
            }
        }
        return nullptr;
    }
};

} // namespace

TEST(MKScale, IsTheLongestRoundDistanceThatFits) {
    const std::tuple<double, double, double> cases[] = {
        {1, 120, 100},  {1.7, 120, 200}, {4.1, 120, 200}, {4.2, 120, 500},     {8.4, 120, 1000},
        {0.9, 100, 50}, {1, 100, 100},   {1, 99.9, 50},   {2000, 120, 200000}, {0.001, 120, 0.1},
    };
    for (const auto& [metersPerPoint, width, meters] : cases) {
        const MKScale scale = MKScale::fitting(metersPerPoint, width);
        EXPECT_NEAR(scale.meters, meters, meters * 1e-9) << metersPerPoint;
        EXPECT_NEAR(scale.width, meters / metersPerPoint, 1e-6);
    }
}

TEST(MKScale, IsAlwaysOneTwoOrFiveAndMoreThanTwoFifthsOfTheWidth) {
    for (double metersPerPoint = 0.01; metersPerPoint < 1e5; metersPerPoint *= 1.037) {
        const MKScale scale = MKScale::fitting(metersPerPoint, 120);
        EXPECT_LE(scale.width, 120 * (1 + 1e-6));
        EXPECT_GT(scale.width, 120 * 0.4 - 1e-6);
        const double digit = scale.meters / std::pow(10, std::floor(std::log10(scale.meters) + 1e-9));
        EXPECT_TRUE(std::abs(digit - 1) < 1e-6 || std::abs(digit - 2) < 1e-6 || std::abs(digit - 5) < 1e-6) << digit;
    }
}

TEST(MKScale, IsWrittenInTheUnitThatKeepsItShort) {
    EXPECT_EQ((MKScale{5000000, 0}.text()), "5000 km");
    EXPECT_EQ((MKScale{1000, 0}.text()), "1 km");
    EXPECT_EQ((MKScale{500, 0}.text()), "500 m");
    EXPECT_EQ((MKScale{1, 0}.text()), "1 m");
    EXPECT_EQ((MKScale{0.5, 0}.text()), "50 cm");
    EXPECT_EQ((MKScale{0.01, 0}.text()), "1 cm");
}

TEST_F(MKScaleBarTest, IsHiddenUntilAHostWantsIt) {
    show({400, 300});
    ASSERT_TRUE(bar());
    EXPECT_TRUE(bar()->isHidden());
    map->setShowsScale(true);
    EXPECT_FALSE(bar()->isHidden());
}

TEST_F(MKScaleBarTest, MeasuresTheGroundAtTheCentresLatitude) {
    map->setShowsScale(true);
    show({400, 300});
    for (const double latitude : {0.0, 33.861315, -60.0, 80.0}) {
        map->setRegion({{latitude, 10}, {0.001, 0.5}});
        settle();
        // Along the parallel, on the ellipsoid.
        const double sine = std::sin(latitude * M_PI / 180);
        const double radius = 6378137 / std::sqrt(1 - 0.00669437999014 * sine * sine);
        const double metersPerDegree = radius * std::cos(latitude * M_PI / 180) * M_PI / 180;
        const double metersPerPoint = map->region().span.longitudeDelta * metersPerDegree / 400;
        EXPECT_NEAR(bar()->scale().meters / bar()->scale().width, metersPerPoint, metersPerPoint * 1e-6) << latitude;
    }
}

TEST_F(MKScaleBarTest, StandsAtTheBottomLeftAndStaysThere) {
    map->setShowsScale(true);
    show({400, 300});
    EXPECT_EQ(bar()->frame().origin, (CGPoint{6, 300 - 6 - MKScaleBar::height}));
    window->setSize({500, 400}, 1);
    settle();
    EXPECT_EQ(bar()->frame().origin, (CGPoint{6, 400 - 6 - MKScaleBar::height}));
}

TEST_F(MKScaleBarTest, LeavesSmallMapsAlone) {
    map->setShowsScale(true);
    show({150, 300});
    EXPECT_TRUE(bar()->isHidden());
    window->setSize({400, 70}, 1);
    settle();
    EXPECT_TRUE(bar()->isHidden());
    window->setSize({400, 300}, 1);
    settle();
    EXPECT_FALSE(bar()->isHidden());
}

TEST_F(MKScaleBarTest, ADragOnItMovesTheMap) {
    map->setShowsScale(true);
    show({400, 300});
    map->setRegion({{0, 0}, {10, 10}});
    settle();
    const double before = map->centerCoordinate().longitude;
    touch(1, UITouchPhase::Began, {30, 285});
    for (int i = 1; i <= 20; ++i) {
        frame();
        touch(1, UITouchPhase::Moved, {30.0 + 5 * i, 285});
    }
    touch(1, UITouchPhase::Ended, {130, 285});
    settle();
    EXPECT_LT(map->centerCoordinate().longitude, before);
}

} // namespace veyra
