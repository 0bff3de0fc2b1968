#include "Platform/MapKit/Basemap/BasemapFile.h"

#include "Tests/Platform/MapKit/Basemap/BasemapTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace veyra {
namespace {

using namespace basemapTest;

constexpr std::int32_t step = 1 << 20; // of the hand-made files
constexpr double world = 268435456.0;

std::vector<BasemapPoint> scaled(const std::vector<RawPoint>& points) {
    std::vector<BasemapPoint> out;
    for (const RawPoint point : points) {
        out.push_back({point.x * step, point.y * step});
    }
    return out;
}

std::vector<BasemapPoint> partOf(const BasemapShapes& shapes, std::size_t index) {
    const auto part = shapes.part(index);
    return {part.begin(), part.end()};
}

class SmallBasemap : public testing::Test {
protected:
    const Bytes _bytes = makeSmallFile();
    const BasemapFile _file{_bytes, "small.vbm"};
};

TEST_F(SmallBasemap, TellsItsLayout) {
    EXPECT_EQ(_file.name(), "small.vbm");
    EXPECT_EQ(_file.attribution(), "Somebody");
    EXPECT_EQ(_file.levelCount(), 1);
    EXPECT_EQ(_file.level(0).columns, 2);
    EXPECT_EQ(_file.level(0).cellSide, 128 * step);
    EXPECT_EQ(_file.level(0).margin, 4 * step);
    EXPECT_EQ(_file.level(0).step, step);
    EXPECT_EQ(_file.level(0).minimumZoom, 1.5);
    EXPECT_THROW(_file.level(1), std::out_of_range);
    EXPECT_THROW(_file.level(-1), std::out_of_range);
}

TEST_F(SmallBasemap, DecodesAreasInMapPoints) {
    const BasemapCell cell = _file.cell({0, 0, 0});
    EXPECT_EQ(faultOf(cell), "");
    EXPECT_FALSE(cell.isAllLand);
    EXPECT_EQ(cell.bounds, (BasemapBounds{0, 0, 128 * step, 128 * step}));
    EXPECT_EQ(cell.fillBounds, (BasemapBounds{-4 * step, 0, 132 * step, 132 * step}));
    ASSERT_EQ(cell.shapes(BasemapLayer::Land).partCount(), 1u);
    EXPECT_EQ(partOf(cell.shapes(BasemapLayer::Land), 0),
              scaled({{100, 10}, {132, 10}, {132, 60}, {128, 60}, {100, 60}}));
    ASSERT_EQ(cell.shapes(BasemapLayer::Lakes).partCount(), 2u);
    EXPECT_EQ(partOf(cell.shapes(BasemapLayer::Lakes), 1), scaled({{108, 30}, {108, 40}, {112, 40}, {112, 30}}));
}

TEST_F(SmallBasemap, DecodesLinesInMapPoints) {
    const BasemapShapes& borders = _file.cell({0, 0, 0}).shapes(BasemapLayer::Borders);
    ASSERT_EQ(borders.partCount(), 1u);
    EXPECT_EQ(partOf(borders, 0), scaled({{100, 15}, {110, 15}, {128, 18}}));
    EXPECT_EQ(borders.bounds, (BasemapBounds{100 * step, 15 * step, 128 * step, 18 * step}));
}

TEST_F(SmallBasemap, DerivesTheCoastFromTheLandWithinTheCell) {
    // Of the northern edge, which has no vertex on the cell's border, nothing is a coast of this cell.
    const BasemapCell cell = _file.cell({0, 0, 0});
    const BasemapShapes& coast = cell.shapes(BasemapLayer::Coast);
    ASSERT_EQ(coast.partCount(), 1u);
    EXPECT_EQ(partOf(coast, 0), scaled({{128, 60}, {100, 60}, {100, 10}}));
}

TEST_F(SmallBasemap, DerivesClosedLakeShores) {
    const BasemapCell cell = _file.cell({0, 0, 0});
    const BasemapShapes& shore = cell.shapes(BasemapLayer::LakeShore);
    ASSERT_EQ(shore.partCount(), 2u);
    EXPECT_EQ(partOf(shore, 0), scaled({{104, 20}, {120, 20}, {120, 50}, {104, 50}, {104, 20}}));
    EXPECT_EQ(partOf(shore, 1), scaled({{108, 30}, {108, 40}, {112, 40}, {112, 30}, {108, 30}}));
}

TEST_F(SmallBasemap, FillsACellThatIsAllLand) {
    const BasemapCell cell = _file.cell({0, 1, 0});
    EXPECT_EQ(faultOf(cell), "");
    EXPECT_TRUE(cell.isAllLand);
    ASSERT_EQ(cell.shapes(BasemapLayer::Land).partCount(), 1u);
    EXPECT_EQ(partOf(cell.shapes(BasemapLayer::Land), 0), scaled({{124, 0}, {260, 0}, {260, 132}, {124, 132}}));
    EXPECT_TRUE(cell.shapes(BasemapLayer::Coast).isEmpty());
}

TEST_F(SmallBasemap, HasNothingInAnEmptyCell) {
    const BasemapCell cell = _file.cell({0, 0, 1});
    for (const BasemapShapes& shapes : cell.layers) {
        EXPECT_TRUE(shapes.isEmpty());
        EXPECT_TRUE(shapes.bounds.isEmpty());
    }
}

TEST_F(SmallBasemap, HasNoCoastAlongTheBottomOfTheSquare) {
    const BasemapCell cell = _file.cell({0, 1, 1});
    const BasemapShapes& coast = cell.shapes(BasemapLayer::Coast);
    ASSERT_EQ(coast.partCount(), 1u);
    EXPECT_EQ(partOf(coast, 0), scaled({{128, 248}, {188, 228}, {256, 248}}));
}

TEST_F(SmallBasemap, RefusesCellsThatDoNotExist) {
    EXPECT_THROW(_file.cell({0, 2, 0}), std::out_of_range);
    EXPECT_THROW(_file.cell({0, 0, 2}), std::out_of_range);
    EXPECT_THROW(_file.cell({1, 0, 0}), std::out_of_range);
}

TEST_F(SmallBasemap, ListsTheCellsThatMeetARectangleAndHoldAnything) {
    using Ids = std::vector<BasemapCellId>;
    const Ids all = {{0, 0, 0}, {0, 1, 0}, {0, 1, 1}};
    EXPECT_EQ(_file.cellsMeeting(0, 0, 0, world, world), all);
    EXPECT_EQ(_file.cellsMeeting(0, -world, -world, 3 * world, 3 * world), all);
    EXPECT_EQ(_file.cellsMeeting(0, 0, 0, world / 2, world), (Ids{{0, 0, 0}}));
    EXPECT_EQ(_file.cellsMeeting(0, world / 2, 0, world, world / 2), (Ids{{0, 1, 0}}));
    EXPECT_EQ(_file.cellsMeeting(0, world / 2 - 1, 0, world / 2 + 1, 1), (Ids{{0, 0, 0}, {0, 1, 0}}));
    EXPECT_EQ(_file.cellsMeeting(0, world / 2, 5, world / 2, 5), (Ids{{0, 1, 0}}));
}

TEST_F(SmallBasemap, ListsNoCellsForWhatLiesOutsideTheSquare) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(_file.cellsMeeting(0, world, 0, 2 * world, world).empty());
    EXPECT_TRUE(_file.cellsMeeting(0, -world, 0, 0, world).empty());
    EXPECT_TRUE(_file.cellsMeeting(0, 0, -9, world, -1).empty());
    EXPECT_TRUE(_file.cellsMeeting(0, 10, 0, 9, world).empty());
    EXPECT_TRUE(_file.cellsMeeting(0, nan, 0, world, world).empty());
    EXPECT_TRUE(_file.cellsMeeting(0, 0, 0, world, nan).empty());
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(_file.cellsMeeting(0, -infinity, -infinity, infinity, infinity).size(), 3u);
    EXPECT_THROW(_file.cellsMeeting(1, 0, 0, 1, 1), std::out_of_range);
}

TEST_F(SmallBasemap, DrawsItsOnlyLevelAtEveryZoom) {
    EXPECT_EQ(_file.levelForZoom(-3), 0);
    EXPECT_EQ(_file.levelForZoom(20), 0);
    EXPECT_EQ(_file.levelForZoom(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST_F(SmallBasemap, CountsTheMemoryOfACell) {
    EXPECT_GE(_file.cell({0, 0, 0}).byteSize(), sizeof(BasemapCell) + 13 * sizeof(BasemapPoint));
}

} // namespace
} // namespace veyra
