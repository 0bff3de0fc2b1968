// The suite of every host, in a bare script context.
#include "Tests/Classes/ViewFixture.h"

#include <chrono>
#include <fstream>
#include <sstream>

namespace veyra {

class Conformance : public MapFixture {
protected:
    Conformance() {
        layOut(320, 240);
        settle();
        // Timers of a page: these end when nothing else is under way.
        run("timers = []; setTimeout = call => timers.push(call); clearTimeout = timer => { delete timers[timer - 1] "
            "}; "
            "passed = 0; failed = []; done = false; report = (name, isGood, detail) => { "
            "if (isGood) ++passed; else failed.push(name + ': ' + detail) }");
    }
    void load(const char* suite) {
        std::ifstream file(std::string(VEYRA_CONFORMANCE_FOLDER) + suite);
        std::stringstream text;
        text << file.rdbuf();
        ASSERT_FALSE(text.str().empty());
        evaluate(text.str());
    }
    void finish(const std::string& call, int checks) {
        run(call + ".then(() => { done = true })");
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (run("done") == "false" && std::chrono::steady_clock::now() < end) {
            settle();
            if (runMainUntil([&] { return view().isIdle(); }))
                settle();
            run("due = timers; timers = []; due.forEach(call => call())");
        }
        EXPECT_EQ(run("done"), "true");
        EXPECT_EQ(run("failed.join('\\n')"), "");
        EXPECT_GE(std::stoi(run("passed")), checks);
        EXPECT_EQ(consoleErrors(), "");
    }
};

TEST_F(Conformance, TheScriptingSurfaceIsWhatEveryPageReliesOn) {
    load("surface.js");
    finish("runSurfaceConformance(map, GeoMap, report)", 100);
}

TEST_F(Conformance, AnnotationsAreWhatEveryPageReliesOn) {
    load("annotations.js");
    finish("runAnnotationConformance(map, report)", 28);
}

} // namespace veyra
