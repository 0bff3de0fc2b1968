// The suite of every host, in a bare script context.
#include "Tests/Classes/ViewFixture.h"

#include <chrono>
#include <fstream>
#include <sstream>

namespace veyra {

using Conformance = MapFixture;

TEST_F(Conformance, TheScriptingSurfaceIsWhatEveryPageReliesOn) {
    layOut(320, 240);
    settle();
    std::ifstream file(VEYRA_CONFORMANCE_SUITE);
    std::stringstream text;
    text << file.rdbuf();
    ASSERT_FALSE(text.str().empty());
    evaluate(text.str());
    run("passed = 0; failed = []; done = false; "
        "runSurfaceConformance(map, GeoMap, (name, isGood, detail) => { "
        "if (isGood) ++passed; else failed.push(name + ': ' + detail) }).then(() => { done = true })");
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (run("done") == "false" && std::chrono::steady_clock::now() < end)
        settle();
    EXPECT_EQ(run("done"), "true");
    EXPECT_EQ(run("failed.join('\\n')"), "");
    EXPECT_GT(std::stoi(run("passed")), 100);
    EXPECT_EQ(consoleErrors(), "");
}

} // namespace veyra
