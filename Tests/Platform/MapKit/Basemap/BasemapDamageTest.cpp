// What the reader does with files that are damaged, by accident or by design.

#include "Platform/MapKit/Basemap/BasemapFile.h"

#include "Platform/MapKit/Basemap/BasemapFormat.h"
#include "Tests/Platform/MapKit/Basemap/BasemapTestSupport.h"

#include <gtest/gtest.h>

#include <random>

extern "C" const std::byte veyraBuiltInWorldStart[];
extern "C" const std::byte veyraBuiltInWorldEnd[];

namespace veyra {
namespace {

using namespace basemapTest;

std::string errorOf(const Bytes& bytes) {
    try {
        const BasemapFile file(bytes, "broken.vbm");
    } catch (const BasemapError& error) {
        return error.what();
    }
    return "no error";
}

std::string cellErrorOf(const std::vector<unsigned char>& payload, std::uint32_t flags = 0) {
    const Bytes bytes = makeFile({{payload, flags}});
    try {
        BasemapFile(bytes, "broken.vbm").cell({0, 0, 0});
    } catch (const BasemapError& error) {
        return error.what();
    }
    return "no error";
}

Bytes worldBytes() {
    return {veyraBuiltInWorldStart, veyraBuiltInWorldEnd};
}

TEST(BasemapDamage, NamesTheFileThePlaceAndTheFault) {
    Bytes bytes = makeSmallFile();
    bytes[3] = std::byte{0};
    EXPECT_EQ(errorOf(bytes), "broken.vbm: byte 3: not a base map file");
    bytes = makeSmallFile();
    bytes[12] = std::byte{2};
    EXPECT_EQ(errorOf(bytes), "broken.vbm: byte 12: format version 2 is not known");
    bytes = makeSmallFile();
    bytes[30] ^= std::byte{1};
    EXPECT_EQ(errorOf(bytes), "broken.vbm: byte 8: the header's checksum is wrong");
    EXPECT_EQ(errorOf(Bytes(27)), "broken.vbm: byte 27: the file ends inside its header");
    EXPECT_EQ(errorOf({}), "broken.vbm: byte 0: the file ends inside its header");
}

TEST(BasemapDamage, RefusesEachWrongFieldOfTheHeader) {
    const auto error = [](std::size_t offset, std::uint32_t value) {
        Bytes bytes = makeSmallFile();
        writeU32(bytes, offset, value);
        reseal(bytes);
        return errorOf(bytes);
    };
    // The attribution takes bytes 28 to 35, the level record 36 to 47, the index 48 to 111.
    EXPECT_EQ(error(16, 27), "broken.vbm: byte 16: the header's length is out of range");
    EXPECT_EQ(error(16, 0xffffffff), "broken.vbm: byte 16: the header's length is out of range");
    EXPECT_EQ(error(12, 0x00000001), "broken.vbm: byte 14: the number of levels is out of range");
    EXPECT_EQ(error(12, 0x00110001), "broken.vbm: byte 14: the number of levels is out of range");
    EXPECT_EQ(error(12, 0x00080001), "broken.vbm: byte 14: the level records run beyond the header");
    EXPECT_EQ(error(24, 0xffffffff), "broken.vbm: byte 24: the attribution runs beyond the header");
    EXPECT_EQ(error(36, 0x01800107), "broken.vbm: byte 36: the level's grid is out of range");
    EXPECT_EQ(error(36, 0x0180011d), "broken.vbm: byte 36: the level's grid is out of range");
    EXPECT_EQ(error(36, 0x01800908), "broken.vbm: byte 37: the level's number of columns is out of range");
    EXPECT_EQ(error(40, 129), "broken.vbm: byte 40: the level's margin is wider than a cell");
    EXPECT_EQ(error(44, 49), "broken.vbm: byte 44: the level's index runs beyond the header");
    EXPECT_EQ(error(44, 0xfffffff0), "broken.vbm: byte 44: the level's index runs beyond the header");
    EXPECT_EQ(error(48, 111), "broken.vbm: byte 48: the cell's data lie outside the file");
    EXPECT_EQ(error(48, 0xffffffff), "broken.vbm: byte 48: the cell's data lie outside the file");
    EXPECT_EQ(error(52, 0xffffffff), "broken.vbm: byte 48: the cell's data lie outside the file");
    EXPECT_EQ(error(56, 0), "broken.vbm: byte 56: the cell's unpacked length is out of range");
    EXPECT_EQ(error(56, 0x04000000), "broken.vbm: byte 56: the cell's unpacked length is out of range");
    EXPECT_EQ(error(64, 200), "broken.vbm: byte 64: a cell without data has an offset or a length");
    EXPECT_EQ(error(72, 1), "broken.vbm: byte 64: a cell without data has an offset or a length");
}

TEST(BasemapDamage, RefusesEachChangedByteOfTheHeader) {
    const Bytes good = makeSmallFile();
    const std::size_t headerLength = readU32(good, basemapFormat::headerLengthOffset);
    ASSERT_EQ(headerLength, 112u);
    for (std::size_t i = 0; i < headerLength; ++i) {
        for (const unsigned mask : {0x01u, 0x80u, 0xffu}) {
            Bytes bytes = good;
            bytes[i] ^= static_cast<std::byte>(mask);
            EXPECT_NE(errorOf(bytes), "no error") << "byte " << i;
        }
    }
}

TEST(BasemapDamage, StaysWithinBoundsWhateverTheHeaderSays) {
    const Bytes good = makeSmallFile();
    for (std::size_t i = basemapFormat::versionOffset; i < readU32(good, basemapFormat::headerLengthOffset); ++i) {
        for (unsigned value = 0; value < 256; ++value) {
            Bytes bytes = good;
            bytes[i] = static_cast<std::byte>(value);
            reseal(bytes);
            try {
                EXPECT_EQ(decodeAll(BasemapFile(bytes, "broken.vbm")).fault, "") << "byte " << i << " = " << value;
            } catch (const BasemapError&) {
            }
        }
    }
}

TEST(BasemapDamage, RefusesEachTruncation) {
    const Bytes good = makeSmallFile();
    for (std::size_t length = 0; length < good.size(); ++length) {
        Bytes bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_NE(errorOf(bytes), "no error") << length;
        if (length >= basemapFormat::fixedHeaderLength) {
            reseal(bytes); // as a file that claims to be that short
            EXPECT_NE(errorOf(bytes), "no error") << length;
        }
    }
    Bytes longer = good;
    longer.push_back(std::byte{0});
    EXPECT_NE(errorOf(longer), "no error");
}

TEST(BasemapDamage, RefusesTheWorldTruncated) {
    const Bytes world = worldBytes();
    std::mt19937 random(3);
    for (int i = 0; i < 50; ++i) {
        const std::size_t length = random() % world.size();
        EXPECT_THROW(BasemapFile(std::span(world).first(length), "cut.vbm"), BasemapError) << length;
    }
}

TEST(BasemapDamage, RefusesDamagedPackedData) {
    const Bytes good = makeSmallFile();
    const std::size_t first = readU32(good, 48);
    const std::size_t end = first + readU32(good, 52);
    int refused = 0;
    for (std::size_t i = first; i < end; ++i) {
        Bytes bytes = good;
        bytes[i] ^= std::byte{0x55};
        const BasemapFile file(bytes, "broken.vbm");
        try {
            file.cell({0, 0, 0});
        } catch (const BasemapError& error) {
            EXPECT_STREQ(error.what(), "broken.vbm: cell 0/0/0: the packed data are damaged");
            ++refused;
        }
        EXPECT_EQ(faultOf(file.cell({0, 1, 1})), "") << "another cell suffers";
    }
    EXPECT_EQ(refused, static_cast<int>(end - first));
}

TEST(BasemapDamage, RefusesAnUnpackedLengthThatIsNotTrue) {
    for (const int difference : {-1, 1, 100}) {
        Bytes bytes = makeSmallFile();
        writeU32(bytes, 56, readU32(bytes, 56) + static_cast<std::uint32_t>(difference));
        reseal(bytes);
        EXPECT_THROW(BasemapFile(bytes, "broken.vbm").cell({0, 0, 0}), BasemapError) << difference;
    }
}

TEST(BasemapDamage, RefusesWrongSections) {
    const std::string start = "broken.vbm: cell 0/0/0: unpacked byte ";
    EXPECT_EQ(cellErrorOf({0}), start + "1: a number is cut off");
    EXPECT_EQ(cellErrorOf({0, 0x80, 0x80, 0x80, 0x80, 0x10}), start + "6: a number is too large");
    EXPECT_EQ(cellErrorOf({0, 0x80, 0x80, 0x80, 0x80, 0x80, 0}), start + "6: a number is too long");
    EXPECT_EQ(cellErrorOf({0, 9, 0}), start + "2: a layer runs beyond the cell");
    EXPECT_EQ(cellErrorOf({1, 1, 0}), start + "2: a layer is stored that follows from another");
    EXPECT_EQ(cellErrorOf({0, 2, 1, 3}), start + "3: a layer has more parts than bytes");
    EXPECT_EQ(cellErrorOf({0, 2, 0, 0}), start + "3: a layer has bytes left over");
    EXPECT_EQ(cellErrorOf({0, 8, 1, 2, 0, 0, 0, 0, 0, 0}), start + "4: a part's number of vertices is out of range");
    EXPECT_EQ(cellErrorOf({0, 8, 1, 4, 0, 0, 0, 0, 0, 0}), start + "4: a part's number of vertices is out of range");
    const std::vector<unsigned char> land = section(0, {{{0, 0}, {1, 0}, {1, 1}}});
    EXPECT_EQ(cellErrorOf(joined({land, land})), start + "12: a layer is there twice");
    EXPECT_EQ(cellErrorOf(land, 1), start + "2: a layer is there twice");
    EXPECT_EQ(cellErrorOf(section(0, {{{-4, 0}, {260, 0}, {260, 256}}})), "no error");
    EXPECT_EQ(cellErrorOf(section(0, {{{-5, 0}, {1, 0}, {1, 1}}})), start + "6: a vertex lies outside its cell");
    EXPECT_EQ(cellErrorOf(section(0, {{{0, -1}, {1, 0}, {1, 1}}})), start + "6: a vertex lies outside its cell");
    EXPECT_EQ(cellErrorOf(section(4, {{{-1, 0}, {1, 0}}})), start + "6: a vertex lies outside its cell");
}

TEST(BasemapDamage, SkipsLayersOfLaterVersions) {
    EXPECT_EQ(cellErrorOf({basemapLayerCount, 3, 0xff, 0xff, 0xff, 255, 0}), "no error");
}

TEST(BasemapDamage, StaysWithinBoundsWhateverACellHolds) {
    const std::vector<unsigned char> good =
        joined({section(0, {{{0, 0}, {90, 0}, {128, 40}, {90, 90}}, {{100, 100}, {200, 100}, {200, 200}}}),
                section(2, {{{10, 10}, {20, 10}, {20, 20}}}), section(4, {{{0, 0}, {50, 50}, {256, 256}}})});
    std::mt19937 random(1);
    int decoded = 0;
    int refused = 0;
    for (int round = 0; round < 20000; ++round) {
        std::vector<unsigned char> payload = good;
        for (auto changes = random() % 4; changes-- > 0;) {
            payload[random() % payload.size()] = static_cast<unsigned char>(random());
        }
        const Bytes bytes = makeFile({{payload, random() % 8 == 0 ? 1u : 0u}});
        const DecodeResult result = decodeAll(BasemapFile(bytes, "broken.vbm"));
        ASSERT_EQ(result.fault, "");
        decoded += result.decoded;
        refused += result.refused;
    }
    EXPECT_GT(decoded, 1000);
    EXPECT_GT(refused, 1000);
}

TEST(BasemapDamage, StaysWithinBoundsInADamagedWorld) {
    const Bytes good = worldBytes();
    const std::size_t headerLength = readU32(good, basemapFormat::headerLengthOffset);
    std::mt19937 random(2);
    for (int round = 0; round < 3; ++round) {
        Bytes bytes = good;
        for (int i = 0; i < 300; ++i) {
            bytes[headerLength + random() % (bytes.size() - headerLength)] ^=
                static_cast<std::byte>(1 + random() % 255);
        }
        const DecodeResult result = decodeAll(BasemapFile(bytes, "broken.vbm"));
        EXPECT_EQ(result.fault, "");
        EXPECT_GT(result.refused, 0);
        EXPECT_GT(result.decoded, 0);
    }
}

} // namespace
} // namespace veyra
