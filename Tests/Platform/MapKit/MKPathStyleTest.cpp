// What becomes of the values that a path's look is given by.
#include "Platform/MapKit/MKPathStyle.h"
#include "Platform/MapKit/MKGeometry.h"
#include "Platform/UIKit/UIColor.h"

#include <gtest/gtest.h>

#include <limits>

namespace veyra {

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
const auto red = UIColor::initWithRedGreenBlueAlpha(1, 0, 0, 1);

std::vector<double> dashes(const std::optional<NSArray>& pattern) {
    MKPathStyle style;
    style.setDashes(pattern, 0);
    return style.dashes;
}

double phase(double given) {
    MKPathStyle style;
    style.setDashes(NSArray{id(4), id(2)}, given);
    return style.dashPhase;
}

} // namespace

TEST(MKPathStyle, ColoursAreClampedToWhatCanBeShown) {
    const auto color = MKPathStyle::Color::of(UIColor::initWithRedGreenBlueAlpha(3, -1, notANumber, 2));
    ASSERT_TRUE(color);
    EXPECT_EQ(color->red, 1);
    EXPECT_EQ(color->green, 0);
    EXPECT_EQ(color->blue, 0);
    EXPECT_EQ(color->alpha, 1);
}

TEST(MKPathStyle, AColourThatIsNoneOrTransparentDrawsNothing) {
    EXPECT_FALSE(MKPathStyle::Color::of(nullptr));
    for (const double alpha : {0.0, -1.0, notANumber}) {
        EXPECT_FALSE(MKPathStyle::Color::of(UIColor::colorWithWhiteAlpha(0, alpha))) << alpha;
    }
}

TEST(MKPathStyle, AWidthThatIsNegativeOrNoNumberDrawsNoLine) {
    for (const double width : {-1.0, -infinity, notANumber}) {
        MKPathStyle style;
        style.setStroke(red, width);
        EXPECT_FALSE(style.stroke) << width;
    }
}

TEST(MKPathStyle, AWidthBeyondAllMeasureIsTheWidest) {
    for (const double width : {1e9, infinity}) {
        MKPathStyle style;
        style.setStroke(red, width);
        EXPECT_EQ(style.width, MKPathStyle::maximumWidth);
    }
}

TEST(MKPathStyle, WidthZeroIsThatOfARoad) {
    MKPathStyle style;
    style.setStroke(red, 0);
    const double pointsAMeter = MKMapPointsPerMeterAtLatitude(48);
    EXPECT_DOUBLE_EQ(style.widthAt(1 / pointsAMeter, 48), 10); // a point a metre
    EXPECT_EQ(style.widthAt(0.01, 48), 2);
    EXPECT_EQ(style.widthAt(2, 48), 24);
    style.setStroke(red, 3.5);
    EXPECT_EQ(style.widthAt(2, 48), 3.5);
}

TEST(MKPathStyle, ADashPatternWithNothingToDashByIsASolidLine) {
    EXPECT_TRUE(dashes(std::nullopt).empty());
    EXPECT_TRUE(dashes(NSArray{}).empty());
    EXPECT_TRUE(dashes(NSArray{id(0), id(0)}).empty());
    EXPECT_TRUE(dashes(NSArray{id(4), id(-1)}).empty());
    EXPECT_TRUE(dashes(NSArray{id(4), id("2")}).empty());
    EXPECT_TRUE(dashes(NSArray{id(4), id()}).empty());
    EXPECT_TRUE(dashes(NSArray{id(4), id(WebUndefined{})}).empty());
    EXPECT_TRUE(dashes(NSArray{id(4), id(notANumber)}).empty());
    EXPECT_TRUE(dashes(NSArray{id(4), id(infinity)}).empty());
    EXPECT_TRUE(dashes(NSArray{id(1e308), id(1e308)}).empty());
}

TEST(MKPathStyle, ADashPatternIsTakenAsItIs) {
    EXPECT_EQ(dashes(NSArray{id(4), id(2)}), (std::vector<double>{4, 2}));
    EXPECT_EQ(dashes(NSArray{id(0), id(2)}), (std::vector<double>{0, 2}));
    EXPECT_EQ(dashes(NSArray{id(4), id(true)}), (std::vector<double>{4, 1}));
}

TEST(MKPathStyle, AnOddPatternChangesPlacesEveryTimeRound) {
    EXPECT_EQ(dashes(NSArray{id(4), id(2), id(1)}), (std::vector<double>{4, 2, 1, 4, 2, 1}));
}

TEST(MKPathStyle, ThePhaseIsAPlaceInThePattern) {
    EXPECT_EQ(phase(0), 0);
    EXPECT_EQ(phase(5), 5);
    EXPECT_EQ(phase(13), 1);
    EXPECT_EQ(phase(-1), 5);
    EXPECT_EQ(phase(notANumber), 0);
    EXPECT_EQ(phase(infinity), 0);
    EXPECT_LT(phase(1e308), 6);
}

} // namespace veyra
