// Maps of the program, and of another application, that get their tiles from a server or an archive.
#include "Tests/Hosts/Veyra/Program.h"
#include "Tests/Support/TileServer.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace veyra::test {

namespace {

class Tiles : public testing::Test {
protected:
    std::map<std::string, std::string> environment(std::map<std::string, std::string> more = {}) const {
        more["XDG_CACHE_HOME"] = folder.file("cache");
        return more;
    }
    /// Takes a picture of a script's map; the script prints what the map loads.
    Finished runScript(const std::vector<std::string>& options, const std::map<std::string, std::string>& more = {}) {
        std::vector<std::string> arguments{"script",
                                           folder.write("script.js", R"(
            map.listener = { mapWillStartLoadingMap() { console.log('will'); },
                             mapDidFinishLoadingMap() { console.log('finish'); },
                             mapDidFailLoadingMap() { console.log('fail'); } };)"),
                                           "--size",
                                           "256x256",
                                           "--output",
                                           picture};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return runVeyra(arguments, environment(more));
    }

    const TemporaryFolder folder;
    const std::string picture = folder.file("map.png");
    TileServer server{coloredTile};
    const std::string page = folder.write(
        "page.html", "<body style='margin: 0'><object type='application/x-veyra-map' style='width: 256px; height: "
                     "256px'></object>");
};

const unsigned world = tileColor(0, 0, 0); // the server's image of the whole world

} // namespace

TEST_F(Tiles, OfAServerAreShownByScripts) {
    const Finished ended = runScript({"--tiles", server.pattern()});
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_EQ(ended.output, "will\nfinish\n");
    EXPECT_EQ(ended.errors, "");
    EXPECT_EQ(Picture(picture).at(128, 128), world);
}

TEST_F(Tiles, OfAServerAreShownInPages) {
    const Finished ended = runVeyra(
        {"snapshot", page, "--output", picture, "--size", "256x256", "--tiles", server.pattern()}, environment());
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_EQ(Picture(picture).at(128, 128), world);
}

TEST_F(Tiles, AreDescribedInAFile) {
    const std::string sources =
        folder.write("sources.json", "{\"standard\": {\"url\": \"" + server.pattern() + "\", \"maximumZoom\": 0}}");
    const Finished ended =
        runVeyra({"snapshot", page, "--output", picture, "--size", "256x256", "--sources", sources}, environment());
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_EQ(Picture(picture).at(128, 128), world);
    EXPECT_EQ(server.count(), 1u);
}

TEST_F(Tiles, HaveTheSizeThatIsSaid) {
    server.setHandler([](const TileRequest& request) {
        TileAnswer answer;
        answer.body = pictureOf(tileColor(request.zoom, request.column, request.row), 512);
        return answer;
    });
    const Finished ended = runVeyra({"script", folder.write("s.js", ""), "--size", "512x512", "--output", picture,
                                     "--tiles", server.pattern(), "--tile-size", "512", "--attribution", "© Us"},
                                    environment());
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_EQ(Picture(picture).at(256, 256), world);
}

TEST_F(Tiles, AreKeptFromRunToRun) {
    server.setHandler([](const TileRequest& request) {
        TileAnswer answer = coloredTile(request);
        answer.fields = "Cache-Control: max-age=1000\r\n";
        return answer;
    });
    const std::string sources =
        folder.write("sources.json", "{\"standard\": {\"url\": \"" + server.pattern() + "\", \"maximumZoom\": 0}}");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(runScript({"--sources", sources}).output, "will\nfinish\n");
    EXPECT_EQ(server.count(), 1u);
    EXPECT_TRUE(std::filesystem::exists(folder.file("cache/veyra/tiles")));
}

TEST_F(Tiles, OfAServerThatIsGoneAreReportedOnceAndTheWorldIsShown) {
    server.setHandler(
        [](const TileRequest&) { return TileAnswer{.status = "404 Not Found", .body = {}, .fields = {}}; });
    const Finished ended = runScript({"--tiles", server.pattern()});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output, "will\nfail\n");
    EXPECT_NE(ended.errors.find("the server answers with status 404"), std::string::npos) << ended.errors;
    EXPECT_TRUE(Picture(picture).isWater(110, 128));
}

TEST_F(Tiles, SlowOnesAreWaitedForBySnapshots) {
    server.setHandler([](const TileRequest& request) {
        TileAnswer answer = coloredTile(request);
        answer.delay = 0.4;
        return answer;
    });
    const Finished ended = runVeyra(
        {"snapshot", page, "--output", picture, "--size", "256x256", "--tiles", server.pattern()}, environment());
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_EQ(Picture(picture).at(128, 128), world);
}

TEST_F(Tiles, ThatMakeNoSenseAreABadCommandLine) {
    const std::string broken = folder.write("broken.json", "{\n \"standard\": {\"url\": }\n}");
    const std::string wrong = folder.write("wrong.json", "{\"standard\": {\"url\": \"http://t/{z}\"}}");
    const std::string script = folder.write("s.js", "");
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"--tiles", "http://t/{z}/{x}"},
         "--tiles: \"http://t/{z}/{x}\" is no pattern for tiles: it needs {z}, {x} and {y} or {-y}"},
        {{"--tiles", folder.file("none.mbtiles")}, "--tiles: there is no file " + folder.file("none.mbtiles")},
        {{"--sources", broken}, "--sources: " + broken + ":2:22: this is no JSON"},
        {{"--sources", wrong}, "--sources: " + wrong + ": standard.url: \"http://t/{z}\" is no pattern for tiles: "},
        {{"--sources", folder.file("none.json")}, folder.file("none.json")},
        {{"--tile-size", "256"}, "--tile-size requires --tiles"},
        {{"--tiles", "http://t/{z}/{x}/{y}", "--tile-size", "5"}, "--tile-size: Value 5 not in range"},
        {{"--tiles", "http://t/{z}/{x}/{y}", "--sources", wrong}, "--sources excludes --tiles"},
    };
    for (const auto& [options, message] : cases) {
        std::vector<std::string> arguments{"script", script};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Finished refused = runVeyra(arguments, environment());
        EXPECT_EQ(refused.status, 2) << message;
        EXPECT_NE(refused.errors.find(message), std::string::npos) << refused.errors;
    }
}

TEST_F(Tiles, ABrokenEnvironmentLeavesTheWorldAndOneLine) {
    const std::string broken = folder.write("broken.json", "{\"standard\": 5}");
    const Finished ended = runScript({}, {{"VEYRA_SOURCES", broken}});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output, "will\nfinish\n");
    const std::string line = broken + ": standard: is no object";
    const size_t found = ended.errors.find(line);
    EXPECT_NE(found, std::string::npos) << ended.errors;
    EXPECT_EQ(ended.errors.find(line, found + 1), std::string::npos);
    EXPECT_TRUE(Picture(picture).isWater(110, 128));
}

TEST_F(Tiles, AreShownByAnotherApplicationThroughTheEnvironmentAlone) {
    const TemporaryFolder modules;
    std::filesystem::copy_file(VEYRA_MODULE, modules.file("veyra-web-extension.so"));
    const std::string sources =
        folder.write("sources.json", "{\"standard\": {\"url\": \"" + server.pattern() + "\", \"maximumZoom\": 0}}");
    const Finished ended =
        runProgram({"xvfb-run", "-a", VEYRA_FOREIGN, modules.file(""), "file://" VEYRA_DATA "/foreign.html", picture},
                   environment({{"VEYRA_SOURCES", sources}}));
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_EQ(Picture(picture).at(90, 100), world);
    EXPECT_EQ(Picture(picture).at(200, 100), 0x010203u);
}

} // namespace veyra::test
