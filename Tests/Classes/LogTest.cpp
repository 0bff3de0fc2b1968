// What the view writes to the log: the script's own lines, and the verbose ones.
#include "Tests/Classes/ViewFixture.h"
#include "Tests/Platform/Foundation/CapturedLog.h"

namespace veyra {

class ViewLog : public MapFixture {
protected:
    /// The lines that a script's run leaves in the log, one a line.
    std::string lines(const std::string& script) {
        const CapturedLog log;
        run(script);
        settle();
        std::string joined;
        for (const std::string& line : log.lines())
            joined += (joined.empty() ? "" : "\n") + line;
        return joined;
    }
};

TEST_F(ViewLog, WritesTheScriptsMessage) {
    EXPECT_EQ(lines("map.log('hello %@ %d ü')"), "message: log: hello %@ %d ü");
    EXPECT_EQ(run("String(map.log('x'))"), "undefined");
}

TEST_F(ViewLog, WritesValuesInTheirTextForm) {
    EXPECT_EQ(lines("map.log(5)"), "message: log: 5");
    EXPECT_EQ(lines("map.log(0.1)"), "message: log: 0.1");
    EXPECT_EQ(lines("map.log(true)"), "message: log: 1");
    EXPECT_EQ(lines("map.log(null)"), "message: log: (null)");
    EXPECT_EQ(lines("map.log()"), "message: log: undefined");
    EXPECT_EQ(lines("map.log({ a: 1 })"), "message: log: WebScriptObject");
    EXPECT_EQ(lines("map.log(map.centerCoordinate)"), "message: log: {'latitude':0.000000,'longitude':0.000000}");
    EXPECT_EQ(lines("map.log(map.userLocation)"), "message: log: VeyraUserLocationSO");
    EXPECT_EQ(lines("map.log('')"), "message: log: ");
}

TEST_F(ViewLog, WritesNothingOfUnknownIdentifiersUnlessItIsVerbose) {
    EXPECT_EQ(lines("map.removeAnnotation('a'); map.removeAnnotations(['a']); map.selectAnnotation('a', true); "
                    "map.deselectAnnotation('a'); map.removeOverlay('a'); map.removeOverlays(['a'])"),
              "");
}

TEST_F(ViewLog, NamesUnknownAnnotationsWhenItIsVerbose) {
    view().setVerboseDebugLoggingEnabled(true);
    EXPECT_EQ(lines("map.removeAnnotation('a')"), "message: Map does not have annotation with Id 'a'; cannot remove");
    EXPECT_EQ(lines("map.removeAnnotations(['b', 5])"),
              "message: Map does not have annotation with Id 'b'; cannot remove\n"
              "message: Map does not have annotation with Id '5'; cannot remove");
    EXPECT_EQ(lines("map.selectAnnotation('a', false)"),
              "message: Map does not have annotation with Id 'a'; cannot select");
    EXPECT_EQ(lines("map.deselectAnnotation('a', true)"),
              "message: Map does not have annotation with Id 'a'; cannot deselect");
}

TEST_F(ViewLog, NamesUnknownOverlaysWhenItIsVerbose) {
    view().setVerboseDebugLoggingEnabled(true);
    EXPECT_EQ(lines("map.removeOverlay('a')"), "message: Map does not have overlay with Id 'a'; cannot remove");
    EXPECT_EQ(lines("map.removeOverlays(['b', 1.5])"),
              "message: Map does not have overlay with Id 'b'; cannot remove\n"
              "message: Map does not have overlay with Id '1.5'; cannot remove");
}

TEST_F(ViewLog, TheLookUpOfAnAnnotationIsMadeOnTheMainQueue) {
    view().setVerboseDebugLoggingEnabled(true);
    const CapturedLog log;
    run("map.removeAnnotation('a'); map.selectAnnotation('b')");
    EXPECT_TRUE(log.lines().empty());
    runMain();
    EXPECT_EQ(log.lines(), (std::vector<std::string>{
                               "message: Map does not have annotation with Id 'a'; cannot remove",
                               "message: Map does not have annotation with Id 'b'; cannot select",
                           }));
}

TEST_F(ViewLog, TheVerboseSwitchCountsWhenTheWorkRuns) {
    const CapturedLog log;
    run("map.removeAnnotation('a')");
    view().setVerboseDebugLoggingEnabled(true);
    runMain();
    EXPECT_EQ(log.lines().size(), 1u);
}

} // namespace veyra
