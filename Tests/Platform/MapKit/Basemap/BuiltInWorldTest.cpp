// What is where in the built-in world.

#include "Platform/MapKit/Basemap/BasemapFile.h"

#include "Tests/Platform/MapKit/Basemap/BasemapTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <thread>
#include <utility>

namespace veyra {
namespace {

using namespace basemapTest;

constexpr std::int32_t worldSide = 1 << 28;
constexpr std::array lineLayers = {BasemapLayer::Coast, BasemapLayer::LakeShore, BasemapLayer::Borders};

std::vector<BasemapCell> allCells(int level) {
    const BasemapFile& world = builtInBasemap();
    std::vector<BasemapCell> cells;
    for (const BasemapCellId id : world.cellsMeeting(level, 0, 0, worldSide, worldSide)) {
        cells.push_back(world.cell(id));
    }
    return cells;
}

bool isIn(BasemapLayer layer, int level, double latitude, double longitude) {
    const Place place = mapPoint(latitude, longitude);
    const BasemapFile& world = builtInBasemap();
    for (const BasemapCellId id : world.cellsMeeting(level, place.x, place.y, place.x, place.y)) {
        if (winding(world.cell(id).shapes(layer), place) != 0) {
            return true;
        }
    }
    return false;
}

class BuiltInWorld : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Levels, BuiltInWorld, testing::Values(0, 1, 2));

TEST(BuiltInWorldLevels, AreChosenByZoom) {
    const BasemapFile& world = builtInBasemap();
    ASSERT_EQ(world.levelCount(), 3);
    EXPECT_EQ(world.attribution(), "Natural Earth");
    EXPECT_EQ(world.levelForZoom(-1), 0);
    EXPECT_EQ(world.levelForZoom(1.99), 0);
    EXPECT_EQ(world.levelForZoom(2), 1);
    EXPECT_EQ(world.levelForZoom(3.99), 1);
    EXPECT_EQ(world.levelForZoom(4), 2);
    EXPECT_EQ(world.levelForZoom(22), 2);
    EXPECT_EQ(world.levelForZoom(std::nan("")), 0);
    for (const int level : {0, 1, 2}) {
        // Two pixels at the least zoom at which the level is drawn, so that overlapping fills hide their seams.
        const double pixel = worldSide / (256 * std::exp2(world.level(level).minimumZoom));
        EXPECT_GE(world.level(level).margin, 2 * pixel) << level;
    }
}

TEST_P(BuiltInWorld, DecodesThroughout) {
    for (const BasemapCell& cell : allCells(GetParam())) {
        EXPECT_EQ(faultOf(cell), "") << cell.id.column << "/" << cell.id.row;
    }
}

TEST_P(BuiltInWorld, HasLandAndSeaWhereTheyAre) {
    const auto isLand = [](double latitude, double longitude) {
        return isIn(BasemapLayer::Land, GetParam(), latitude, longitude);
    };
    EXPECT_TRUE(isLand(46.6, 2.4)) << "France";
    EXPECT_TRUE(isLand(64.9, -18.5)) << "Iceland";
    EXPECT_TRUE(isLand(-25, 134)) << "Australia";
    EXPECT_TRUE(isLand(66.5, -179.9999)) << "Chukotka, west of the seam";
    EXPECT_TRUE(isLand(66.5, 179.9999)) << "Chukotka, east of the seam";
    EXPECT_TRUE(isLand(-85.05, 90)) << "Antarctica at the bottom of the square";
    EXPECT_TRUE(isLand(-85.05, -90)) << "Antarctica at the bottom of the square";
    EXPECT_FALSE(isLand(30, -40)) << "mid-Atlantic";
    EXPECT_FALSE(isLand(85, 0)) << "Arctic Ocean";
    EXPECT_FALSE(isLand(0, -180)) << "Pacific";
    EXPECT_FALSE(isLand(43.3, 34)) << "Black Sea";
    EXPECT_FALSE(isLand(56, 18.5)) << "Baltic";
}

TEST_P(BuiltInWorld, HasLakesUponTheLand) {
    const auto isLake = [](double latitude, double longitude) {
        return isIn(BasemapLayer::Lakes, GetParam(), latitude, longitude);
    };
    for (const auto& [latitude, longitude] : std::vector<std::pair<double, double>>{{42, 51},
                                                                                    {-1, 33},
                                                                                    {47.7, -87.5},
                                                                                    {43.8, -87},
                                                                                    {53.3, 107.6},
                                                                                    {-15.8, -69.4},
                                                                                    {57.3, -102.3},
                                                                                    {61, 31.5}}) {
        EXPECT_TRUE(isLake(latitude, longitude)) << latitude << " " << longitude;
        EXPECT_TRUE(isIn(BasemapLayer::Land, GetParam(), latitude, longitude)) << latitude << " " << longitude;
    }
    EXPECT_FALSE(isLake(48.85, 2.35)) << "Paris";
    EXPECT_FALSE(isLake(30, -40)) << "mid-Atlantic";
}

TEST(BuiltInWorldLakes, HaveIslandsButOnTheCoarsestLevel) {
    for (const int level : {1, 2}) {
        EXPECT_FALSE(isIn(BasemapLayer::Lakes, level, 45.75, -82.3)) << "Manitoulin Island";
        EXPECT_TRUE(isIn(BasemapLayer::Land, level, 45.75, -82.3)) << "Manitoulin Island";
    }
}

TEST_P(BuiltInWorld, HasNoLinesAlongTheSidesOfTheSquare) {
    for (const BasemapCell& cell : allCells(GetParam())) {
        for (const BasemapLayer layer : lineLayers) {
            const BasemapShapes& lines = cell.shapes(layer);
            for (std::size_t i = 0; i < lines.partCount(); ++i) {
                const auto line = lines.part(i);
                for (std::size_t k = 0; k + 1 < line.size(); ++k) {
                    const BasemapPoint a = line[k];
                    const BasemapPoint b = line[k + 1];
                    EXPECT_FALSE(a.x == b.x && a.x % worldSide == 0) << "at y " << a.y;
                    EXPECT_FALSE(a.y == b.y && a.y % worldSide == 0) << "at x " << a.x;
                }
            }
        }
    }
}

// Shores are closed, so wherever a piece ends another must go on, except at the bottom of the square.
TEST_P(BuiltInWorld, HasShoresWithoutGaps) {
    for (const BasemapLayer layer : {BasemapLayer::Coast, BasemapLayer::LakeShore}) {
        std::map<std::pair<std::int32_t, std::int32_t>, int> ends;
        int pieces = 0;
        for (const BasemapCell& cell : allCells(GetParam())) {
            const BasemapShapes& lines = cell.shapes(layer);
            for (std::size_t i = 0; i < lines.partCount(); ++i) {
                const auto line = lines.part(i);
                if (line.front() != line.back()) {
                    ++pieces;
                    ++ends[{line.front().x % worldSide, line.front().y}];
                    ++ends[{line.back().x % worldSide, line.back().y}];
                }
            }
        }
        EXPECT_GT(pieces, 0);
        int loose = 0;
        for (const auto& [place, count] : ends) {
            loose += count % 2 != 0 && place.first != 0 && place.second != worldSide;
        }
        EXPECT_EQ(loose, 0);
    }
}

// The neighbour to the east of the last column is the first one. A seam shows where one cell's fill ends before the
// other's begins, so both must say the same on either side of their border.
TEST_P(BuiltInWorld, HasFillsThatOverlapBetweenNeighbours) {
    const BasemapFile& world = builtInBasemap();
    const BasemapLevel& layout = world.level(GetParam());
    const auto level = static_cast<std::uint8_t>(GetParam());
    int compared = 0;
    int land = 0;
    const auto compare = [&](const BasemapCell& one, const BasemapCell& other, Place place, double shift) {
        for (const BasemapLayer layer : {BasemapLayer::Land, BasemapLayer::Lakes}) {
            const bool isCovered = winding(one.shapes(layer), place) != 0;
            EXPECT_EQ(isCovered, winding(other.shapes(layer), {place.x + shift, place.y}) != 0)
                << one.id.column << "/" << one.id.row << " at " << place.x << ", " << place.y;
            ++compared;
            land += isCovered;
        }
    };
    for (std::uint16_t row = 0; row < layout.columns; ++row) {
        for (std::uint16_t column = 0; column < layout.columns; ++column) {
            const BasemapCell cell = world.cell({level, column, row});
            const auto eastColumn = static_cast<std::uint16_t>((column + 1) % layout.columns);
            const BasemapCell east = world.cell({level, eastColumn, row});
            const double shift = eastColumn == 0 ? -double{worldSide} : 0;
            for (int i = 1; i < 16; ++i) {
                const double y = cell.bounds.minY + layout.cellSide * (i + 0.37) / 17;
                for (const double past : {-0.9, -0.3, 0.3, 0.9}) {
                    compare(cell, east, {cell.bounds.maxX + past * layout.margin, y}, shift);
                }
            }
            if (row + 1 < layout.columns) {
                const BasemapCell south = world.cell({level, column, static_cast<std::uint16_t>(row + 1)});
                for (int i = 1; i < 16; ++i) {
                    const double x = cell.bounds.minX + layout.cellSide * (i + 0.37) / 17;
                    for (const double past : {-0.9, -0.3, 0.3, 0.9}) {
                        compare(cell, south, {x, cell.bounds.maxY + past * layout.margin}, 0);
                    }
                }
            }
        }
    }
    EXPECT_GT(land, compared / 10);
    EXPECT_LT(land, compared / 2);
}

TEST(BuiltInWorldBorders, RunBetweenGermanyAndPolandAndNotAlongCoasts) {
    const Place corner = mapPoint(52.7, 14.4);
    const Place opposite = mapPoint(52.3, 14.8);
    const BasemapFile& world = builtInBasemap();
    int vertices = 0;
    for (const BasemapCellId id : world.cellsMeeting(2, corner.x, corner.y, opposite.x, opposite.y)) {
        for (const BasemapPoint point : world.cell(id).shapes(BasemapLayer::Borders).points) {
            vertices += point.x > corner.x && point.x < opposite.x && point.y > corner.y && point.y < opposite.y;
        }
    }
    EXPECT_GT(vertices, 10);

    // Iceland, Madagascar and Australia border on nobody.
    for (const auto& [north, west, south, east] :
         {std::array{67.0, -25.0, 63.0, -13.0}, {-11.0, 43.0, -26.0, 51.0}, {-11.5, 113.0, -39.5, 154.0}}) {
        const Place from = mapPoint(north, west);
        const Place to = mapPoint(south, east);
        for (const BasemapCellId id : world.cellsMeeting(2, from.x, from.y, to.x, to.y)) {
            for (const BasemapPoint point : world.cell(id).shapes(BasemapLayer::Borders).points) {
                EXPECT_FALSE(point.x > from.x && point.x < to.x && point.y > from.y && point.y < to.y);
            }
        }
    }
}

TEST(BuiltInWorldThreads, DecodeTheSameCellAtOnce) {
    const BasemapCellId id = {1, 4, 2};
    const BasemapCell expected = builtInBasemap().cell(id);
    ASSERT_FALSE(expected.shapes(BasemapLayer::Land).isEmpty());
    std::array<bool, 8> same{};
    {
        std::vector<std::jthread> threads;
        for (bool& result : same) {
            threads.emplace_back([&] {
                result = builtInBasemap().cell(id).shapes(BasemapLayer::Land).points ==
                         expected.shapes(BasemapLayer::Land).points;
            });
        }
    }
    for (const bool result : same) {
        EXPECT_TRUE(result);
    }
}

} // namespace
} // namespace veyra
