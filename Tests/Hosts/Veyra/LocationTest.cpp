// Scripts and pages that ask where the user is, and who decides.
#include "Tests/Hosts/Veyra/Program.h"

#include <gtest/gtest.h>

namespace veyra::test {

namespace {

const char* const askingScript = R"(
    map.listener = new Proxy({}, { get: (target, name) => (...values) => {
        if (/User/.test(name))
            console.log([name, ...values.map((value) => JSON.stringify(value))].join(' '));
    } });
    map.showsUserLocation = true;
)";

const char* const askingPage = R"(<!DOCTYPE html>
<object id="map" type="application/x-veyra-map" style="width: 300px; height: 200px"></object>
<script>
    map.listener = {
        mapDidUpdateUserLocation(where) { console.log('at', where.latitude, where.longitude); document.title = 'done'; },
        mapUpdateUserLocationFailed(code) { console.log('failed', code); document.title = 'done'; },
    };
    map.showsUserLocation = true;
</script>)";

class Location : public testing::Test {
protected:
    Finished script(std::vector<std::string> options, const std::string& text = askingScript) {
        options.insert(options.begin(), {"script", folder.write("script.js", text)});
        return runVeyra(options);
    }
    Finished snapshot(std::vector<std::string> options) {
        options.insert(options.begin(), {"snapshot", folder.write("page.html", askingPage), "--output",
                                         folder.file("picture.png"), "--size", "320x240", "--wait-for-title", "done"});
        return runVeyra(options);
    }
    std::string track() {
        return folder.write("track.gpx", "<gpx><trk><trkseg><trkpt lat='1' lon='2'/><trkpt lat='3' lon='4'/>"
                                         "<trkpt lat='5' lon='6'/></trkseg></trk></gpx>");
    }
    const TemporaryFolder folder;
};

} // namespace

TEST_F(Location, AScriptIsDeniedWithoutATerminal) {
    const Finished ended = script({"--location", "48.2,16.4"});
    EXPECT_EQ(ended.output, "mapUpdateUserLocationFailed -1\n");
    EXPECT_EQ(ended.status, 0);
}

TEST_F(Location, AnAllowedScriptIsToldThePlace) {
    const Finished ended = script({"--geolocation", "allow", "--location", "48.2,16.4,25,170"});
    EXPECT_EQ(ended.output, "mapWillStartUpdatingUserLocation\nmapDidUpdateUserLocation {\"latitude\":48.2,"
                            "\"longitude\":16.4,\"altitude\":170,\"horizontalAccuracy\":25,"
                            "\"verticalAccuracy\":25}\n");
    EXPECT_EQ(ended.status, 0);
}

TEST_F(Location, APlaceSouthOfTheEquatorIsNoOption) {
    const Finished ended = script({"--geolocation", "allow", "--location", "-33.9,151.2"},
                                  "map.listener = { mapDidUpdateUserLocation(at) { console.log(at.latitude); } };"
                                  "map.showsUserLocation = true");
    EXPECT_EQ(ended.output, "-33.9\n");
    EXPECT_EQ(ended.status, 0) << ended.errors;
}

TEST_F(Location, AnAllowedScriptWithoutAPlaceIsToldSo) {
    const Finished ended = script({"--geolocation", "allow"});
    EXPECT_EQ(ended.output, "mapWillStartUpdatingUserLocation\nmapUpdateUserLocationFailed 0\n");
    EXPECT_EQ(ended.status, 0);
}

TEST_F(Location, AScriptFollowsATrackToItsEnd) {
    const Finished ended =
        script({"--geolocation", "allow", "--location-track", track(), "--speed", "20"},
               "map.listener = { mapDidUpdateUserLocation(at) { console.log(at.latitude, at.longitude); } };"
               "map.showsUserLocation = true");
    EXPECT_EQ(ended.output, "1 2\n3 4\n5 6\n");
    EXPECT_EQ(ended.status, 0);
}

TEST_F(Location, AQuestionInTheTerminalThatNobodyAnswersIsANo) {
    const Finished ended = script({"--geolocation", "ask", "--location", "1,2"});
    EXPECT_EQ(ended.output, "mapUpdateUserLocationFailed -1\n");
    EXPECT_EQ(ended.errors, "veyra: " + folder.file("script.js") + " asks where you are. Tell it? [y/N] ");
    EXPECT_EQ(ended.status, 0);
}

TEST_F(Location, APageIsToldWhereTheUserIsWhenThatIsAllowed) {
    const Finished ended = snapshot({"--geolocation", "allow", "--location", "48.25,16.5"});
    EXPECT_EQ(ended.output, "CONSOLE LOG at 48.25 16.5\n");
    EXPECT_EQ(ended.status, 0) << ended.errors;
}

TEST_F(Location, APageIsDenied) {
    for (const std::vector<std::string>& options : {std::vector<std::string>{"--geolocation", "deny"}, {}}) {
        const Finished ended = snapshot(options);
        EXPECT_EQ(ended.output, "CONSOLE LOG failed -1\n");
        EXPECT_EQ(ended.status, 0) << ended.errors;
    }
}

TEST_F(Location, BadOptionsSayWhatIsWrong) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"--location", "95,1"}, "--location: 95,1 is no location such as"},
        {{"--location-track", "/nowhere.gpx"}, "--location-track: cannot read /nowhere.gpx: No such file or directory"},
        {{"--location", "1,2", "--location-track", track()}, "excludes"},
        {{"--speed", "2"}, "--speed requires --location-track"},
        {{"--geolocation", "perhaps"}, "--geolocation: "},
        {{"--location-track", track(), "--speed", "0"}, "--speed: "},
        {{"--location-track", track(), "--speed", "-1"}, "--speed: "},
        {{"--location-track", track(), "--speed", "nan"}, "--speed: "},
        {{"--location-track", track(), "--speed", "inf"}, "--speed: "},
        {{"--location-track", track(), "--speed", "fast"}, "--speed"},
        {{"--timeout", "nan"}, "--timeout: "},
    };
    for (const auto& [options, message] : cases) {
        const Finished refused = script(options);
        EXPECT_EQ(refused.status, 2) << message;
        EXPECT_NE(refused.errors.find(message), std::string::npos) << refused.errors;
    }
}

} // namespace veyra::test
