// The file of names: what is in the built-in one, and what damaged ones are refused with.

#include "Platform/MapKit/Basemap/BasemapNames.h"

#include "Platform/MapKit/Basemap/BasemapFile.h"
#include "Platform/MapKit/Basemap/BasemapFormat.h"
#include "Tests/Platform/MapKit/Basemap/BasemapTestSupport.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <set>

namespace veyra {
namespace {

using namespace basemapTest;

// One name as the format has it.
std::vector<unsigned char> record(unsigned char kind, unsigned char flags, unsigned char size,
                                  const std::string& text) {
    std::vector<unsigned char> bytes = {kind, flags, size, static_cast<unsigned char>(text.size()),
                                        0x80, 0x02,  0x00, 0x18, // zooms 2.5 to 24
                                        0,    0,     0,    8,    // x: half of the world
                                        0,    0,     0,    4,    // y: a quarter
                                        5,    0,     0,    0};
    for (const char character : text) {
        bytes.push_back(static_cast<unsigned char>(character));
    }
    return bytes;
}

void append(Bytes& out, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) {
        out.push_back(static_cast<std::byte>(value >> (8 * i)));
    }
}

void resealNames(Bytes& file) {
    writeU32(
        file, 8,
        static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(file.data()) + 12, file.size() - 12)));
}

Bytes namesFile(const std::vector<unsigned char>& records) {
    Bytes out;
    for (const int byte : {0x89, 0x56, 0x42, 0x4e, 0x0d, 0x0a, 0x1a, 0x0a}) {
        out.push_back(static_cast<std::byte>(byte));
    }
    append(out, 0); // checksum
    append(out, 1);
    append(out, static_cast<std::uint32_t>(records.size()));
    uLongf length = compressBound(records.size());
    std::vector<unsigned char> packed(length);
    compress(packed.data(), &length, records.data(), records.size());
    for (std::size_t i = 0; i < length; ++i) {
        out.push_back(static_cast<std::byte>(packed[i]));
    }
    resealNames(out);
    return out;
}

std::string errorOf(const Bytes& file) {
    try {
        BasemapNames(file, "broken.vbn");
    } catch (const BasemapError& error) {
        return error.what();
    }
    return "no error";
}

const BasemapName* find(std::string_view text, BasemapNameKind kind) {
    for (const BasemapName& name : builtInNames().all()) {
        if (builtInNames().text(name) == text && name.kind == kind) {
            return &name;
        }
    }
    return nullptr;
}

} // namespace

TEST(BasemapNamesFile, GivesNamesInTheFilesOrder) {
    const BasemapNames names(namesFile(joined({record(0, 0, 3, "Utopia"), record(5, 1, 1, "Ou\nTopos")})), "small.vbn");
    ASSERT_EQ(names.all().size(), 2u);
    EXPECT_EQ(names.all()[0].kind, BasemapNameKind::Country);
    EXPECT_EQ(names.all()[0].size, 3);
    EXPECT_FALSE(names.all()[0].isCapital);
    EXPECT_EQ(names.text(names.all()[0]), "Utopia");
    EXPECT_EQ(names.all()[1].kind, BasemapNameKind::City);
    EXPECT_TRUE(names.all()[1].isCapital);
    EXPECT_EQ(names.text(names.all()[1]), "Ou\nTopos");
    EXPECT_EQ(names.all()[1].minimumZoom, 2.5);
    EXPECT_EQ(names.all()[1].maximumZoom, 24);
    EXPECT_EQ(names.all()[1].x, 1 << 27);
    EXPECT_EQ(names.all()[1].y, 1 << 26);
    EXPECT_EQ(names.all()[1].extent, 5);
}

TEST(BasemapNamesFile, SaysWhatIsBrokenAndWhere) {
    const Bytes good = namesFile(record(0, 0, 3, "Utopia"));
    EXPECT_EQ(errorOf(good), "no error");
    EXPECT_EQ(errorOf({good.begin(), good.begin() + 19}), "broken.vbn: byte 19: the file ends inside its header");
    Bytes other = good;
    other[3] = static_cast<std::byte>('M');
    EXPECT_EQ(errorOf(other), "broken.vbn: byte 3: not a file of names");
    Bytes version = good;
    version[12] = static_cast<std::byte>(2);
    EXPECT_EQ(errorOf(version), "broken.vbn: byte 12: the format version is not known");
    Bytes flipped = good;
    flipped.back() ^= static_cast<std::byte>(1);
    EXPECT_EQ(errorOf(flipped), "broken.vbn: byte 8: the checksum is wrong");
    resealNames(flipped);
    EXPECT_EQ(errorOf(flipped), "broken.vbn: byte 20: the packed data are damaged");
    Bytes longer = good;
    writeU32(longer, 16, 0x7fffffff);
    resealNames(longer);
    EXPECT_EQ(errorOf(longer), "broken.vbn: byte 16: the unpacked length is out of range");
}

TEST(BasemapNamesFile, RefusesNamesThatCannotBe) {
    EXPECT_EQ(errorOf(namesFile(record(6, 0, 0, "x"))), "broken.vbn: unpacked byte 1: the kind of a name is not known");
    EXPECT_EQ(errorOf(namesFile(record(0, 0, 4, "x"))),
              "broken.vbn: unpacked byte 3: the size of a name is out of range");
    std::vector<unsigned char> outside = record(0, 0, 0, "x");
    outside[11] = 0x11;
    EXPECT_EQ(errorOf(namesFile(outside)), "broken.vbn: unpacked byte 20: a name lies outside the world");
    std::vector<unsigned char> cutOff = record(0, 0, 0, "abc");
    cutOff.pop_back();
    EXPECT_EQ(errorOf(namesFile(cutOff)), "broken.vbn: unpacked byte 20: the names end inside one");
    cutOff.resize(7);
    EXPECT_EQ(errorOf(namesFile(cutOff)), "broken.vbn: unpacked byte 6: the names end inside one");
}

TEST(BasemapNamesFile, StaysWithinBoundsWhateverItHolds) {
    const std::vector<unsigned char> good = joined({record(0, 0, 3, "Utopia"), record(5, 1, 1, "Ou Topos")});
    std::mt19937 random(3);
    int read = 0, refused = 0;
    for (int round = 0; round < 5000; ++round) {
        std::vector<unsigned char> records = good;
        records[random() % records.size()] = static_cast<unsigned char>(random());
        try {
            const BasemapNames names(namesFile(records), "broken.vbn");
            for (const BasemapName& name : names.all()) {
                EXPECT_LE(names.text(name).size(), 255u);
            }
            ++read;
        } catch (const BasemapError&) {
            ++refused;
        }
    }
    EXPECT_GT(read, 500);
    EXPECT_GT(refused, 500);
}

TEST(BuiltInNames, AreSortedByTheZoomFromWhichTheyAreShown) {
    const auto names = builtInNames().all();
    ASSERT_GT(names.size(), 7000u);
    for (std::size_t i = 0; i + 1 < names.size(); ++i) {
        EXPECT_LE(names[i].minimumZoom, names[i + 1].minimumZoom);
        EXPECT_LT(names[i].minimumZoom, names[i].maximumZoom);
    }
}

TEST(BuiltInNames, AreWhereTheyBelong) {
    struct Expected {
        const char* text;
        BasemapNameKind kind;
        double latitude, longitude, tolerance; // degrees
    };
    for (const Expected& expected : {Expected{"Vienna", BasemapNameKind::City, 48.21, 16.37, 0.1},
                                     {"Tokyo", BasemapNameKind::City, 35.69, 139.75, 0.1},
                                     {"Quito", BasemapNameKind::City, -0.22, -78.5, 0.1},
                                     {"France", BasemapNameKind::Country, 47, 2.5, 2},
                                     {"United\nStates", BasemapNameKind::Country, 39.5, -98, 6},
                                     {"Fiji", BasemapNameKind::Country, -17.5, 178, 2},
                                     {"Greenland", BasemapNameKind::Territory, 73, -40, 8},
                                     {"Black Sea", BasemapNameKind::Sea, 43.2, 34.2, 0.5},
                                     {"Indian\nOcean", BasemapNameKind::Ocean, -22, 80, 1},
                                     {"Lake Baikal", BasemapNameKind::Lake, 53.6, 108.1, 0.5}}) {
        const BasemapName* const name = find(expected.text, expected.kind);
        ASSERT_NE(name, nullptr) << expected.text;
        const Place low = mapPoint(expected.latitude + expected.tolerance, expected.longitude - expected.tolerance);
        const Place high = mapPoint(expected.latitude - expected.tolerance, expected.longitude + expected.tolerance);
        EXPECT_TRUE(name->x > low.x && name->x < high.x && name->y > low.y && name->y < high.y) << expected.text;
    }
}

TEST(BuiltInNames, DoNotPutAntarcticaUponTheSidesOfTheSquare) {
    const BasemapName* const name = find("Antarctica", BasemapNameKind::Territory);
    ASSERT_NE(name, nullptr);
    EXPECT_GT(name->y, mapPoint(-70, 0).y);
    EXPECT_LT(name->y, mapPoint(-83, 0).y);
}

TEST(BuiltInNames, KnowCapitalsAndWriteNamesOut) {
    int capitals = 0;
    for (const BasemapName& name : builtInNames().all()) {
        capitals += name.isCapital;
        EXPECT_TRUE(!name.isCapital || name.kind == BasemapNameKind::City);
        const std::string_view text = builtInNames().text(name);
        EXPECT_EQ(text.find('?'), std::string_view::npos) << text;
        EXPECT_FALSE(text.empty());
    }
    EXPECT_EQ(capitals, 200);
    EXPECT_TRUE(find("Vienna", BasemapNameKind::City)->isCapital);
    EXPECT_FALSE(find("Geneva", BasemapNameKind::City)->isCapital);
    EXPECT_NE(find("Zürich", BasemapNameKind::City), nullptr);
    EXPECT_NE(find("São Paulo", BasemapNameKind::City), nullptr);
    EXPECT_NE(find("Bosnia and\nHerzegovina", BasemapNameKind::Country), nullptr);
    EXPECT_EQ(find("Siachen Glacier", BasemapNameKind::Country), nullptr);
}

TEST(BuiltInNames, TakeLittleMemory) {
    EXPECT_LT(builtInNames().byteSize(), 600u << 10);
}

} // namespace veyra
