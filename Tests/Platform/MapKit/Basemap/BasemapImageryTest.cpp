// The file of pictures: what is in the built-in one, and what damaged ones are refused with.

#include "Platform/MapKit/Basemap/BasemapImagery.h"

#include "Platform/MapKit/Basemap/BasemapFile.h"
#include "Tests/Platform/MapKit/Basemap/BasemapTestSupport.h"

#include <gtest/gtest.h>
#include <zlib.h>

namespace veyra {
namespace {

using namespace basemapTest;

constexpr std::size_t attributionLength = 4, tiles = 5;
constexpr std::size_t indexOffset = 28 + attributionLength, headerLength = indexOffset + 8 * tiles;

void resealPictures(Bytes& file) {
    writeU32(file, 20, static_cast<std::uint32_t>(file.size()));
    writeU32(
        file, 8,
        static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(file.data()) + 12, headerLength - 12)));
}

// Two levels of tiles of 16 pixels, each tile being three bytes that are no picture: its number.
Bytes picturesFile() {
    Bytes out;
    for (const int byte : std::initializer_list<int>{0x89, 0x56, 0x42, 0x49, 0x0d,
                                                     0x0a, 0x1a, 0x0a, 0,    0,
                                                     0,    0,    1,    0,    2,
                                                     0,    16,   0,    0,    0,
                                                     0,    0,    0,    0,    static_cast<int>(attributionLength),
                                                     0,    0,    0,    'S',  'e',
                                                     'l',  'f'}) {
        out.push_back(static_cast<std::byte>(byte));
    }
    out.resize(headerLength + 3 * tiles);
    for (std::size_t i = 0; i < tiles; ++i) {
        writeU32(out, indexOffset + 8 * i, static_cast<std::uint32_t>(headerLength + 3 * i));
        writeU32(out, indexOffset + 8 * i + 4, 3);
        out[headerLength + 3 * i] = static_cast<std::byte>(i);
    }
    resealPictures(out);
    return out;
}

std::string errorOf(const Bytes& file) {
    try {
        BasemapImagery(file, "broken.vbi");
    } catch (const BasemapError& error) {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(BasemapImageryFile, GivesTheBytesOfEachTile) {
    const Bytes file = picturesFile();
    const BasemapImagery imagery(file, "small.vbi");
    EXPECT_EQ(imagery.levelCount(), 2);
    EXPECT_EQ(imagery.tileSide(), 16);
    EXPECT_EQ(imagery.levelSide(1), 32);
    EXPECT_EQ(imagery.attribution(), "Self");
    EXPECT_EQ(imagery.tile(0, 0, 0)[0], static_cast<std::byte>(0));
    EXPECT_EQ(imagery.tile(1, 1, 0)[0], static_cast<std::byte>(2));
    EXPECT_EQ(imagery.tile(1, 0, 1)[0], static_cast<std::byte>(3));
    EXPECT_EQ(imagery.tile(1, 0, 1).size(), 3u);
    EXPECT_EQ(imagery.tileName(1, 0, 1), "small.vbi: tile 1/0/1 at byte 81");
}

TEST(BasemapImageryFile, HasNoTilesBeyondItsLevels) {
    const Bytes file = picturesFile();
    const BasemapImagery imagery(file, "small.vbi");
    for (const auto& [level, column, row] :
         {std::array{2, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {1, 2, 0}, {1, 0, 2}, {1, -1, 0}, {1, 0, -1}}) {
        EXPECT_THROW(imagery.tile(level, column, row), std::out_of_range) << level << "/" << column << "/" << row;
    }
}

TEST(BasemapImageryFile, SaysWhatIsBrokenAndWhere) {
    const Bytes good = picturesFile();
    EXPECT_EQ(errorOf(good), "no error");
    EXPECT_EQ(errorOf({good.begin(), good.begin() + 27}), "broken.vbi: byte 27: the file ends inside its header");
    const auto changed = [&](std::size_t at, int value, bool seal) {
        Bytes file = good;
        file[at] = static_cast<std::byte>(value);
        if (seal) {
            resealPictures(file);
        }
        return errorOf(file);
    };
    EXPECT_EQ(changed(0, 'x', false), "broken.vbi: byte 0: not a file of pictures");
    EXPECT_EQ(changed(12, 9, false), "broken.vbi: byte 12: the format version is not known");
    EXPECT_EQ(changed(14, 0, false), "broken.vbi: byte 14: the number of levels is out of range");
    EXPECT_EQ(changed(14, 11, false), "broken.vbi: byte 14: the number of levels is out of range");
    EXPECT_EQ(changed(16, 1, false), "broken.vbi: byte 16: the side of the tiles is out of range");
    EXPECT_EQ(changed(20, 1, false), "broken.vbi: byte 20: the file is not as long as it says");
    EXPECT_EQ(changed(14, 9, false), "broken.vbi: byte 24: the header runs beyond the file");
    EXPECT_EQ(changed(25, 9, false), "broken.vbi: byte 24: the header runs beyond the file");
    EXPECT_EQ(changed(30, 'x', false), "broken.vbi: byte 8: the header's checksum is wrong");
    EXPECT_EQ(changed(indexOffset + 8, 0, true), "broken.vbi: byte 40: a tile lies outside the file");
    EXPECT_EQ(changed(indexOffset + 12, 255, true), "broken.vbi: byte 40: a tile lies outside the file");
}

TEST(BuiltInImagery, ReachesToZoomFive) {
    const BasemapImagery& imagery = builtInImagery();
    EXPECT_EQ(imagery.levelSide(imagery.levelCount() - 1), 256 << 5);
    EXPECT_EQ(imagery.attribution(), "NASA Blue Marble");
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            const auto tile = imagery.tile(2, column, row);
            ASSERT_GT(tile.size(), 100u);
            EXPECT_EQ(tile[0], static_cast<std::byte>(0xff)); // as every JPEG file begins
            EXPECT_EQ(tile[1], static_cast<std::byte>(0xd8));
        }
    }
}

} // namespace veyra
