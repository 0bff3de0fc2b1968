#include "Tests/Hosts/Veyra/Program.h"

#include <gtest/gtest.h>

namespace veyra::test {

namespace {

class Script : public testing::Test {
protected:
    /// Runs the text as script.js.
    Finished run(const std::string& text, std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"script", folder.write("script.js", text)});
        return runVeyra(options);
    }
    std::string place(const std::string& position) const { return "veyra: " + folder.file("script.js") + position; }
    const TemporaryFolder folder;
};

} // namespace

TEST_F(Script, ConsolePrintsPlainlyToItsTwoStreams) {
    const Finished ended = run(R"(
        console.log('text', 1.5, true, null, undefined, [1, 2], {}, Symbol('s'));
        console.info('two\nlines ä\u{1f30d}');
        console.log();
        console.warn('careful');
        console.error(new TypeError('bad'));
    )");
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output, "text 1.5 true null undefined 1,2 [object Object] Symbol(s)\ntwo\nlines ä🌍\n\n");
    EXPECT_EQ(ended.errors, "careful\nTypeError: bad\n");
}

TEST_F(Script, HasTheMapAndItsNumbers) {
    const Finished ended = run(R"(
        console.log(GeoMap.kVeyraTypeHybrid, GeoMap.kVeyraAnnotationURIInvalid);
        console.log(map.mapType, map.zoomEnabled, map.listener, map.annotations.length, map.lock);
        try { map.setRegion(null, false); } catch (error) { console.log(error.message); }
        const { setRegion } = map;
        try { setRegion.call({}, null); } catch (error) { console.log(error.name); }
    )");
    EXPECT_EQ(ended.output, "2 -1000\n0 true null 0 undefined\nNull object passed to 'setRegion'\nTypeError\n");
    EXPECT_EQ(ended.status, 0);
}

TEST_F(Script, TimersRunInTheOrderInWhichTheyAreDueWithTheirArguments) {
    const Finished ended = run(R"(
        setTimeout((...all) => console.log('late', all.join()), 60, 1, 'b');
        const never = setTimeout(() => console.log('never'), 30);
        setTimeout(() => clearTimeout(never), 5);
        setTimeout(() => console.log('early'), 20);
        let count = 0;
        const ticking = setInterval(() => { if (++count === 3) { clearInterval(ticking); console.log('3 ticks'); } }, 1);
        Promise.resolve().then(() => console.log('microtask'));
        console.log('first');
    )");
    EXPECT_EQ(ended.output, "first\nmicrotask\n3 ticks\nearly\nlate 1,b\n");
    EXPECT_EQ(ended.status, 0);
}

TEST_F(Script, ABusyScriptsTimersStillRunInTheOrderInWhichTheyAreDue) {
    const Finished ended = run(R"(
        setTimeout(() => console.log('due second'), 20);
        setTimeout(() => console.log('due first'), 5);
        for (const end = Date.now() + 60; Date.now() < end;);
    )");
    EXPECT_EQ(ended.output, "due first\ndue second\n");
}

// The engine then collects all its garbage when a timer says so.
TEST_F(Script, MayHoldMuchMemoryForLong) {
    const Finished ended = run(R"(
        const much = new Float32Array(2 ** 28);
        let sum = 0;
        for (let i = 0; i < much.length; i += 1024)
            sum += much[i];
        setTimeout(() => console.log('still here', sum), 1500);
    )");
    EXPECT_EQ(ended.output, "still here 0\n");
    EXPECT_EQ(ended.status, 0);
}

TEST_F(Script, OnlyFunctionsAreTakenToBeCalledLater) {
    const Finished ended = run(R"(
        for (const later of [setTimeout, setInterval, requestAnimationFrame])
            try { later('text', 1); } catch (error) { console.log(String(error)); }
    )");
    EXPECT_EQ(ended.output, "TypeError: The first argument of setTimeout is no function\n"
                            "TypeError: The first argument of setInterval is no function\n"
                            "TypeError: The first argument of requestAnimationFrame is no function\n");
}

TEST_F(Script, AnimationFramesComeOneAtATimeAtSixtyASecond) {
    const Finished ended = run(R"(
        const times = [];
        let cancelled = false;
        const step = time => {
            times.push(time);
            if (times.length < 10) { requestAnimationFrame(step); return; }
            const mean = (times[9] - times[0]) / 9;
            console.log(times.every((t, i) => !i || t > times[i - 1]), mean > 15 && mean < 40);
        };
        requestAnimationFrame(step);
        cancelAnimationFrame(requestAnimationFrame(() => { console.log('cancelled'); }));
    )");
    EXPECT_EQ(ended.output, "true true\n");
}

TEST_F(Script, EventsReachTheListener) {
    const Finished ended = run(R"(
        map.listener = {
            mapRegionWillChange() { console.log('will change'); },
            mapRegionDidChange(region) { console.log('did change', region.latitude.toFixed(3)); },
        };
        map.setCenterCoordinate({ latitude: 12, longitude: 30 }, true);
    )");
    // The map's first layout may be reported before.
    EXPECT_TRUE(ended.output.ends_with("will change\ndid change 12.000\n")) << ended.output;
    EXPECT_EQ(ended.status, 0);
}

TEST_F(Script, EndsOnlyWhenWhatAnEventAskedForHasHappened) {
    const Finished ended = run(R"(
        let moves = 0;
        map.listener = {
            mapRegionDidChange() {
                if (++moves < 40) map.setCenterCoordinate({ latitude: 0, longitude: 0 }, false);
                else if (moves === 40) console.log('forty');
            },
        };
        map.setCenterCoordinate({ latitude: 0, longitude: 0 }, false);
    )");
    EXPECT_EQ(ended.output, "forty\n");
    EXPECT_EQ(ended.status, 0);
}

TEST_F(Script, CloseEndsItWhateverWaits) {
    const Finished ended = run(R"(
        setInterval(() => console.log('tick'), 40);
        setTimeout(() => { close(); console.log('the turn goes on'); }, 5);
    )");
    EXPECT_EQ(ended.output, "the turn goes on\n");
    EXPECT_EQ(ended.status, 0);
}

TEST_F(Script, AnUncaughtExceptionPrintsFileAndLineAndEndsItWithStatus1) {
    const std::pair<const char*, const char*> cases[] = {
        {"let a = 1;\n\nmissing();", ":3:8: uncaught exception: ReferenceError: Can't find variable: missing\n"},
        {"setTimeout(() => {\n  throw new Error('in a timer');\n}, 1);\nsetInterval(() => {}, 1);",
         ":2:18: uncaught exception: Error: in a timer\n"},
        {"requestAnimationFrame(() => {\n\n throw new RangeError('in a frame'); });",
         ":3:22: uncaught exception: RangeError: in a frame\n"},
        {"(async () => {\n  throw new Error('in a promise');\n})();",
         ":2:18: uncaught exception: Error: in a promise\n"},
        {"let x = ;", ":1: uncaught exception: SyntaxError: Unexpected token ';'\n"},
        {"throw 'a mere text';", ": uncaught exception: a mere text\n"},
    };
    for (const auto& [text, message] : cases) {
        const Finished ended = run(text);
        EXPECT_EQ(ended.status, 1) << text;
        EXPECT_EQ(ended.errors, place(message));
        EXPECT_EQ(ended.output, "");
    }
}

TEST_F(Script, AnExceptionInAnEventGoesToTheConsole) {
    const Finished ended = run(R"(
        map.listener = { mapRegionDidChange() { throw new Error('in an event'); } };
        map.setCenterCoordinate({ latitude: 1, longitude: 2 }, false);
        setTimeout(() => console.log('goes on'), 100);
    )");
    EXPECT_TRUE(ended.errors.starts_with("Error: in an event\n")) << ended.errors;
    EXPECT_EQ(ended.output, "goes on\n");
    EXPECT_EQ(ended.status, 0);
}

TEST_F(Script, TimeOutEndsEvenAScriptThatNeverYields) {
    const Finished ended = run("for (;;);", {"--timeout", "0.5"});
    EXPECT_EQ(ended.status, 4);
    EXPECT_EQ(ended.errors, "veyra: time-out after 0.5 seconds: " + folder.file("script.js") + " has not ended\n");
}

TEST_F(Script, ScriptThatCannotBeReadEndsItWithStatus3) {
    const Finished ended = runVeyra({"script", "missing.js"});
    EXPECT_EQ(ended.status, 3);
    EXPECT_EQ(ended.errors, "veyra: cannot read missing.js: No such file or directory\n");
}

TEST_F(Script, WritesThePictureOfTheFinishedMap) {
    const std::string picture = folder.file("map.png");
    const char* coast =
        "map.setRegion({ latitude: -25, longitude: -70.5, latitudeDelta: 2, longitudeDelta: 2 }, true);";
    EXPECT_EQ(run(coast, {"--output", picture, "--size", "200x150", "--scale", "1.5"}).status, 0);
    const Picture map(picture);
    EXPECT_EQ(map.width(), 300);
    EXPECT_EQ(map.height(), 225);
    EXPECT_TRUE(map.isWater(30, 112));
    EXPECT_TRUE(map.isLand(220, 112));
}

TEST_F(Script, CloseStillWritesThePictureOfWhatTheMapWasAskedFor) {
    const std::string picture = folder.file("map.png");
    const Finished ended =
        run("map.setRegion({ latitude: -25, longitude: -70.5, latitudeDelta: 2, longitudeDelta: 2 }, false); close();",
            {"--output", picture, "--size", "200x150"});
    EXPECT_EQ(ended.status, 0);
    const Picture map(picture);
    EXPECT_TRUE(map.isWater(20, 75));
    EXPECT_TRUE(map.isLand(147, 75));
}

TEST_F(Script, PictureThatCannotBeWrittenEndsItWithStatus5) {
    const Finished ended = run("", {"--output", "/nowhere/map.png"});
    EXPECT_EQ(ended.status, 5);
    EXPECT_TRUE(ended.errors.starts_with("veyra: cannot write /nowhere/map.png: ")) << ended.errors;
}

TEST_F(Script, VerboseLogsWhatTheMapIgnores) {
    const char* text = "map.removeOverlay('ring');";
    const char* message = "Map does not have overlay with Id 'ring'; cannot remove";
    EXPECT_NE(run(text, {"--verbose"}).errors.find(message), std::string::npos);
    EXPECT_EQ(run(text).errors, "");
}

TEST_F(Script, SurvivesThousandsOfHostileCalls) {
    const Finished ended = runVeyra({"script", VEYRA_DATA "/hostile.js"});
    EXPECT_EQ(ended.output, "the map works\n");
    EXPECT_EQ(ended.status, 0) << ended.errors;
}

} // namespace veyra::test
