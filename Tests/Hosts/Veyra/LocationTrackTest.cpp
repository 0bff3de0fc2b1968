// Where the user is said to be: the command line's place, and recorded tracks.
#include "Hosts/Veyra/LocationTrack.h"
#include "Hosts/Veyra/LocationPlayer.h"
#include "Tests/Hosts/Veyra/Program.h"

#include <gtest/gtest.h>

namespace veyra::test {

namespace {

std::string text(const LocationTrack& track) {
    std::string result;
    for (const auto& [time, location] : track) {
        char line[160];
        g_snprintf(line, sizeof line, "%g: %g %g ±%g %g ±%g\n", time, location->coordinate().latitude,
                   location->coordinate().longitude, location->horizontalAccuracy(), location->altitude(),
                   location->verticalAccuracy());
        result += line;
    }
    return result;
}

class GPX : public testing::Test {
protected:
    std::string read(const std::string& content) {
        problem.clear();
        return text(readGPX(folder.write("track.gpx", content), problem));
    }
    const TemporaryFolder folder;
    std::string problem;
};

} // namespace

TEST(LocationOption, IsReadWithWhatIsGiven) {
    std::string problem;
    EXPECT_EQ(text(readLocation("48.2,-16.4", problem)), "0: 48.2 -16.4 ±10 0 ±-1\n");
    EXPECT_EQ(text(readLocation("48.2,-16.4,25", problem)), "0: 48.2 -16.4 ±25 0 ±-1\n");
    EXPECT_EQ(text(readLocation("-90,180,0,170.5", problem)), "0: -90 180 ±0 170.5 ±0\n");
    EXPECT_EQ(problem, "");
}

TEST(LocationOption, AnythingElseIsAProblem) {
    for (const char* wrong : {"", "48", "48,", ",16", "48,16,", "48,16,5,6,7", "91,0", "0,181", "0,0,-1", "x,1", "1 2",
                              "nan,0", "0,inf", "0x10,5", "1, 2"}) {
        std::string problem;
        EXPECT_TRUE(readLocation(wrong, problem).empty()) << wrong;
        EXPECT_EQ(problem,
                  std::string(wrong) + " is no location such as 48.2,16.4 or 48.2,16.4,25,170 (degrees, then metres)");
    }
}

TEST_F(GPX, PointsOfAllTracksInTheirTime) {
    EXPECT_EQ(read("<?xml version='1.0'?><gpx xmlns='http://www.topografix.com/GPX/1/1'><metadata><time>1999</time>"
                   "</metadata><trk><trkseg><trkpt lat='48.1' lon='16.1'><ele> 170 </ele>"
                   "<time>2020-05-01T10:00:00Z</time><hdop>2</hdop></trkpt>"
                   "<trkpt lat='48.2' lon='16.2'><time>2020-05-01T12:00:02.5+02:00</time></trkpt></trkseg></trk>"
                   "<trk><trkseg><trkpt lon='16.3' lat='48.3'/></trkseg></trk></gpx>"),
              "0: 48.1 16.1 ±10 170 ±10\n2.5: 48.2 16.2 ±5 0 ±-1\n3.5: 48.3 16.3 ±5 0 ±-1\n");
    EXPECT_EQ(problem, "");
}

TEST_F(GPX, TimesNeverGoBack) {
    EXPECT_EQ(read("<gpx><trk><trkseg><trkpt lat='1' lon='1'><time>2020-05-01T10:00:10Z</time></trkpt>"
                   "<trkpt lat='2' lon='1'><time>2020-05-01T10:00:00Z</time></trkpt>"
                   "<trkpt lat='3' lon='1'><time>broken</time></trkpt></trkseg></trk></gpx>"),
              "0: 1 1 ±5 0 ±-1\n1: 2 1 ±5 0 ±-1\n2: 3 1 ±5 0 ±-1\n");
}

TEST_F(GPX, TimesCountFromTheFirstPointThatHasOne) {
    EXPECT_EQ(read("<gpx><trk><trkseg><trkpt lat='1' lon='1'/><trkpt lat='2' lon='1'/>"
                   "<trkpt lat='3' lon='1'><time>2020-05-01T10:00:00Z</time></trkpt>"
                   "<trkpt lat='4' lon='1'><time>2020-05-01T10:00:05Z</time></trkpt></trkseg></trk></gpx>"),
              "0: 1 1 ±5 0 ±-1\n1: 2 1 ±5 0 ±-1\n2: 3 1 ±5 0 ±-1\n7: 4 1 ±5 0 ±-1\n");
}

TEST_F(GPX, TimesWithoutAZoneAreUTCAndMayBeEqual) {
    EXPECT_EQ(read("<gpx><trk><trkseg><trkpt lat='1' lon='1'><time>2020-05-01T10:00:00Z</time></trkpt>"
                   "<trkpt lat='2' lon='1'><time>2020-05-01T10:00:30</time></trkpt>"
                   "<trkpt lat='3' lon='1'><time>2020-05-01T10:00:30</time></trkpt></trkseg></trk></gpx>"),
              "0: 1 1 ±5 0 ±-1\n30: 2 1 ±5 0 ±-1\n30: 3 1 ±5 0 ±-1\n");
}

TEST_F(GPX, FilesThatBeginWithAByteOrderMark) {
    EXPECT_EQ(read("\xef\xbb\xbf<?xml version='1.0'?><gpx><rte><rtept lat='1' lon='2'/></rte></gpx>"),
              "0: 1 2 ±5 0 ±-1\n");
    EXPECT_EQ(problem, "");
}

TEST_F(GPX, AHundredThousandPoints) {
    std::string content = "<gpx><trk><trkseg>";
    for (int i = 0; i < 100000; ++i)
        content += "<trkpt lat='1' lon='2'><ele>3</ele></trkpt>\n";
    problem.clear();
    const LocationTrack track = readGPX(folder.write("track.gpx", content + "</trkseg></trk></gpx>"), problem);
    ASSERT_EQ(track.size(), 100000u) << problem;
    EXPECT_EQ(track.back().time, 99999);
}

TEST_F(GPX, RoutesWithoutTracks) {
    EXPECT_EQ(read("<gpx><wpt lat='9' lon='9'/><rte><rtept lat='1' lon='2'/><rtept lat='3' lon='4'/></rte></gpx>"),
              "0: 1 2 ±5 0 ±-1\n1: 3 4 ±5 0 ±-1\n");
}

TEST_F(GPX, ProblemsNameTheFileAndThePlace) {
    EXPECT_EQ(read("<gpx><trk/></gpx>"), "");
    EXPECT_EQ(problem, folder.file("track.gpx") + ": no track and no route with points");
    EXPECT_EQ(read("<gpx>\n<trk><trkseg>\n<trkpt lat='95' lon='1'/>"), "");
    EXPECT_EQ(problem, folder.file("track.gpx") + ": Error on line 3 char 26: a point without a legal lat and lon");
    EXPECT_EQ(read("<gpx>\n<trk>"), "");
    EXPECT_EQ(problem.find(folder.file("track.gpx") + ": Error on line 2"), 0u) << problem;
    EXPECT_EQ(read(std::string("\x89PNG\0\xff", 6)), "");
    EXPECT_NE(problem, "");
    problem.clear();
    EXPECT_TRUE(readGPX("/nowhere/track.gpx", problem).empty());
    EXPECT_EQ(problem, "cannot read /nowhere/track.gpx: No such file or directory");
    EXPECT_TRUE(readGPX("/", problem).empty());
    EXPECT_EQ(problem, "cannot read /: Is a directory");
    EXPECT_EQ(read(""), "");
    EXPECT_EQ(problem.find(folder.file("track.gpx") + ": "), 0u) << problem;
}

TEST(LocationPlayer, TellsAllFixesOfOneMomentInTheirOrder) {
    LocationTrack track;
    for (int i = 0; i < 4; ++i)
        track.push_back({i ? 1.0 : 0.0, std::make_shared<CLLocation>(CLLocationCoordinate2DMake(i, 0), 0, 5, -1)});
    LocationPlayer player(track, 20);
    std::vector<double> told;
    const auto play = [&](size_t last) {
        player.start([&, last](const std::shared_ptr<const CLLocation>& location) {
            told.push_back(location->coordinate().latitude);
            if (told.size() == last)
                player.stop();
        });
        while (player.isPlaying())
            g_main_context_iteration(nullptr, TRUE);
    };
    play(3);
    EXPECT_EQ(told, (std::vector<double>{0, 1, 2}));
    play(9);
    EXPECT_EQ(told, (std::vector<double>{0, 1, 2, 3})); // where the user is just now
}

TEST(LocationPlayer, TellsEachFixInItsTimeAndGoesOnWhileNobodyListens) {
    LocationTrack track;
    for (int i = 0; i < 4; ++i)
        track.push_back({i * 10.0, std::make_shared<CLLocation>(CLLocationCoordinate2DMake(i, 0), 0, 5, -1)});
    LocationPlayer player(track, 100); // a fix each 0.1 s
    std::vector<double> told;
    const auto note = [&](const std::shared_ptr<const CLLocation>& location) {
        told.push_back(location->coordinate().latitude);
    };
    const auto waitFor = [&](size_t count) {
        const gint64 end = g_get_monotonic_time() + 5 * G_USEC_PER_SEC;
        while (told.size() < count && g_get_monotonic_time() < end)
            g_main_context_iteration(nullptr, FALSE);
    };
    const gint64 start = g_get_monotonic_time();
    player.start(note);
    EXPECT_TRUE(told.empty());
    waitFor(2);
    EXPECT_GE(g_get_monotonic_time() - start, 100000);
    EXPECT_EQ(told, (std::vector<double>{0, 1}));
    player.stop();
    EXPECT_FALSE(player.isPlaying());
    while (g_get_monotonic_time() - start < 250000)
        g_usleep(10000);
    player.start(note);
    waitFor(4);
    EXPECT_EQ(told, (std::vector<double>{0, 1, 2, 3}));
    EXPECT_FALSE(player.isPlaying());
}

} // namespace veyra::test
