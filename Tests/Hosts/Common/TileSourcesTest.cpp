// How tile sources are described, and what is said of descriptions that make no sense.
#include "Hosts/Common/TileSources.h"

#include "Platform/MapKit/ImageTiles/MKImageSet.h"
#include "Platform/MapKit/MKTile.h"
#include "Tests/Platform/Foundation/CapturedLog.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace veyra {

namespace {

class TileSources : public testing::Test {
protected:
    TileSources() {
        gchar* const made = g_dir_make_tmp("veyra-sources-XXXXXX", nullptr);
        folder = made;
        g_free(made);
    }
    ~TileSources() override {
        g_unsetenv(TileSourcesVariable);
        std::filesystem::remove_all(folder);
    }

    std::shared_ptr<const MKTileSource> read(const std::string& text) const {
        return readTileSources(text, "sources.json", folder);
    }
    std::string problemOf(const std::string& text) const {
        try {
            read(text);
            return "";
        } catch (const TileSourcesError& error) {
            return error.what();
        }
    }
    std::string write(const std::string& name, const std::string& text) const {
        std::ofstream(folder + "/" + name) << text;
        return folder + "/" + name;
    }

    std::string folder;
};

} // namespace

TEST_F(TileSources, SayWhatEachMapTypeShows) {
    write("a.mbtiles", "");
    const auto source = read(R"({
        "standard": {"url": "https://{s}.tiles.example/{z}/{x}/{y}{r}.png", "subdomains": "xy", "tileSize": 512,
                     "minimumZoom": 2, "maximumZoom": 18, "attribution": "© Us", "attributionURL": "https://us.example/"},
        "hybrid": {"mbtiles": "a.mbtiles"}})");
    const auto standard = source->imageSet(MKMapTypeStandard);
    ASSERT_TRUE(standard);
    EXPECT_EQ(standard->tileSize(), 512);
    EXPECT_EQ(standard->minimumZoom(), 2);
    EXPECT_EQ(standard->maximumZoom(), 18);
    EXPECT_TRUE(standard->hasDoubled());
    EXPECT_EQ(standard->host({0, 1, 1, 0, false}), "y.tiles.example");
    EXPECT_EQ(source->attribution(MKMapTypeStandard), (MKTileAttribution{"© Us", "https://us.example/"}));
    EXPECT_FALSE(source->imageSet(MKMapTypeSatellite));
    EXPECT_TRUE(source->imageSet(MKMapTypeHybrid));
}

TEST_F(TileSources, HaveDefaults) {
    const auto set = read(R"({"satellite": {"url": "http://t/{z}/{x}/{y}"}})")->imageSet(MKMapTypeSatellite);
    EXPECT_EQ(set->tileSize(), 256);
    EXPECT_EQ(set->minimumZoom(), 0);
    EXPECT_EQ(set->maximumZoom(), 22);
    EXPECT_EQ(set->attribution(), MKTileAttribution());
}

TEST_F(TileSources, ThatAreNoJSONAreReportedWithFileLineAndColumn) {
    EXPECT_EQ(problemOf("{\n  \"standard\": {,}\n}"), "sources.json:2:16: this is no JSON");
    EXPECT_EQ(problemOf(""), "sources.json:1:1: this is no JSON");
    EXPECT_EQ(problemOf("{\"standard\": {}"), "sources.json:1:16: this is no JSON");
}

TEST_F(TileSources, WithNumbersThatNothingHoldsAreReported) {
    EXPECT_EQ(problemOf(R"({"standard": {"url": "http://t/{z}/{x}/{y}", "tileSize": 1e999}})"),
              "sources.json: the number '1e999' is too large");
}

TEST_F(TileSources, OfAFolderADeviceOrAHugeFileAreNotRead) {
    const std::string reason = ": this is no file of at most 1048576 bytes";
    write("huge.json", std::string((1 << 20) + 1, ' '));
    for (const std::string& path : {folder, std::string("/dev/zero"), folder + "/huge.json"}) {
        try {
            readTileSourcesSetting(path);
            FAIL() << path;
        } catch (const TileSourcesError& error) {
            EXPECT_EQ(error.what(), path + reason);
        }
    }
}

TEST_F(TileSources, DeepWithinOneAnotherAreReported) {
    EXPECT_EQ(problemOf(std::string(200000, '[')), "sources.json:1:200001: this is no JSON");
    EXPECT_EQ(problemOf(std::string(200000, '[') + std::string(200000, ']')),
              "sources.json: there is no object with a map type in it");
}

TEST_F(TileSources, ThatMakeNoSenseAreReportedWithFileAndPlace) {
    const std::pair<const char*, const char*> cases[] = {
        {"[]", "sources.json: there is no object with a map type in it"},
        {"{}", "sources.json: there is no object with a map type in it"},
        {R"({"terrain": {}})", "sources.json: terrain: is no map type; there are standard, satellite and hybrid"},
        {R"({"standard": 5})", "sources.json: standard: is no object"},
        {R"({"standard": {}})", "sources.json: standard: needs either \"url\" or \"mbtiles\""},
        {R"({"standard": {"url": "http://t/{z}/{x}/{y}", "mbtiles": "a"}})",
         "sources.json: standard: needs either \"url\" or \"mbtiles\""},
        {R"({"standard": {"url": 5}})", "sources.json: standard.url: is no string"},
        {R"({"standard": {"url": "http://t/{z}/{x}"}})",
         "sources.json: standard.url: \"http://t/{z}/{x}\" is no pattern for tiles: it needs {z}, {x} and {y} or {-y}"},
        {R"({"standard": {"url": "http://t/{z}/{x}/{y}", "tilesize": 5}})",
         "sources.json: standard.tilesize: is no setting"},
        {R"({"standard": {"url": "http://t/{z}/{x}/{y}", "tileSize": 5}})",
         "sources.json: standard.tileSize: is no whole number from 64 to 2048"},
        {R"({"standard": {"url": "http://t/{z}/{x}/{y}", "tileSize": 256.5}})",
         "sources.json: standard.tileSize: is no whole number from 64 to 2048"},
        {R"({"standard": {"url": "http://t/{z}/{x}/{y}", "maximumZoom": 31}})",
         "sources.json: standard.maximumZoom: is no whole number from 0 to 30"},
        {R"({"standard": {"url": "http://t/{z}/{x}/{y}", "minimumZoom": 9, "maximumZoom": 8}})",
         "sources.json: standard.maximumZoom: is no whole number from 9 to 30"},
        {R"({"standard": {"url": "http://t/{z}/{x}/{y}", "maximumZoom": 18446744073709551615}})",
         "sources.json: standard.maximumZoom: is no whole number from 0 to 30"},
        {R"({"standard": {"url": "http://t/{z}/{x}/{y}", "attributionURL": "javascript:1"}})",
         "sources.json: standard.attributionURL: is no http or https address"},
        {R"({"standard": {"url": "http://t/{z}/{x}/{y}", "subdomains": ""}})",
         "sources.json: standard.url: \"http://t/{z}/{x}/{y}\" is no pattern for tiles: there are no subdomains"},
    };
    for (const auto& [text, message] : cases) {
        EXPECT_EQ(problemOf(text), message);
    }
    EXPECT_EQ(problemOf(R"({"hybrid": {"mbtiles": "none.mbtiles"}})"),
              "sources.json: hybrid.mbtiles: there is no file " + folder + "/none.mbtiles");
}

TEST_F(TileSources, ComeFromTheFileThatTheEnvironmentNames) {
    write("a.mbtiles", "");
    const std::string file = write("s.json", R"({"hybrid": {"mbtiles": "a.mbtiles"}})");
    g_setenv(TileSourcesVariable, file.c_str(), TRUE);
    const CapturedLog log;
    const auto source = tileSourceOfEnvironment();
    ASSERT_TRUE(source);
    EXPECT_TRUE(source->imageSet(MKMapTypeHybrid)) << "the path starts from the file";
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(TileSources, MayStandInTheEnvironmentThemselves) {
    g_setenv(TileSourcesVariable, R"({"standard": {"url": "http://t/{z}/{x}/{y}"}})", TRUE);
    ASSERT_TRUE(tileSourceOfEnvironment());
}

TEST_F(TileSources, OfAnEnvironmentThatSaysNothingAreTheWorldsWithoutAWord) {
    const CapturedLog log;
    EXPECT_FALSE(tileSourceOfEnvironment());
    g_setenv(TileSourcesVariable, "", TRUE);
    EXPECT_FALSE(tileSourceOfEnvironment());
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(TileSources, ThatAreBrokenLeaveTheWorldAndOneLineInTheLog) {
    const CapturedLog log;
    g_setenv(TileSourcesVariable, write("s.json", "{\"standard\": {\"url\": 5}}").c_str(), TRUE);
    EXPECT_FALSE(tileSourceOfEnvironment());
    g_setenv(TileSourcesVariable, (folder + "/none.json").c_str(), TRUE);
    EXPECT_FALSE(tileSourceOfEnvironment());
    const auto lines = log.lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], "message: The built-in world is shown instead of other tiles: " + folder +
                            "/s.json: standard.url: is no string");
    EXPECT_NE(lines[1].find(folder + "/none.json"), std::string::npos);
}

} // namespace veyra
