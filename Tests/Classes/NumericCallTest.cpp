// Conversions as scripts call them: calls with nothing but numbers are served in compiled script, all others by the
// view's own methods, and nobody can tell which.
#include "Tests/Classes/ViewFixture.h"

#include <fstream>
#include <unistd.h>

namespace veyra {

class NumericCalls : public ShownMapFixture {
protected:
    /// Megabytes of the process after a collection.
    double resident() {
        collectGarbage();
        std::ifstream file("/proc/self/statm");
        double total = 0, pages = 0;
        file >> total >> pages;
        return pages * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
    }
};

namespace {

const std::pair<const char*, const char*> conversions[] = {
    {"regionThatFits", "{ latitude: 1.5, longitude: 2, latitudeDelta: 3, longitudeDelta: 4 }"},
    {"convertCoordinateToPoint", "{ latitude: 1.5, longitude: 2 }"},
    {"convertPointToCoordinate", "{ x: 1.5, y: 2 }"},
    {"convertRegionToRect", "{ latitude: 1.5, longitude: 2, latitudeDelta: 3, longitudeDelta: 4 }"},
    {"convertRectToRegion", "{ x: 1.5, y: 2, width: 3, height: 4 }"},
};

} // namespace

TEST_F(NumericCalls, GiveWhatTheSameTextGives) {
    for (const auto& [method, argument] : conversions) {
        const std::string call = "map." + std::string(method);
        const std::string numbers = run("a = " + std::string(argument) + "; JSON.stringify(" + call + "(a))");
        EXPECT_EQ(run("t = Object.fromEntries(Object.entries(a).map(([key, value]) => [key, String(value)])); "
                      "JSON.stringify(" +
                      call + "(t))"),
                  numbers);
        EXPECT_EQ(run("JSON.stringify(" + call + "(Object.assign(() => 1, a)))"), numbers) << "a function";
        EXPECT_NE(numbers.find(':'), std::string::npos);
    }
}

TEST_F(NumericCalls, GiveTheSameAtTheFirstCallAndWhenCompiled) {
    for (const auto& [method, argument] : conversions)
        EXPECT_EQ(run("a = " + std::string(argument) + "; f = () => JSON.stringify(map." + method +
                      "(a)); first = f(); same = true; for (let i = 0; i < 20000; ++i) same &&= f() === first; same"),
                  "true")
            << method;
}

TEST_F(NumericCalls, TakeAValueObjectOfTheirKindAndRefuseAnother) {
    for (const auto& [method, kind] : {std::pair("regionThatFits", "map.region"),
                                       {"convertCoordinateToPoint", "map.centerCoordinate"},
                                       {"convertPointToCoordinate", "map.convertCoordinateToPoint({ latitude: 1, "
                                                                    "longitude: 2 })"},
                                       {"convertRegionToRect", "map.region"},
                                       {"convertRectToRegion", "map.convertRegionToRect(map.region)"}}) {
        const std::string call = "map." + std::string(method);
        EXPECT_EQ(run("v = " + std::string(kind) + "; JSON.stringify(" + call + "(v)) === JSON.stringify(" + call +
                      "({ ...v }))"),
                  "true")
            << method;
        EXPECT_EQ(run(call + "(map.userLocation)"),
                  "threw: Error: Invalid object passed to '" + std::string(method) + "'");
    }
    EXPECT_EQ(run("map.convertCoordinateToPoint(map.region)"),
              "threw: Error: Invalid object passed to 'convertCoordinateToPoint'");
}

TEST_F(NumericCalls, ReadWhatAScriptHasWrittenIntoAValueObject) {
    EXPECT_EQ(run("c = map.centerCoordinate; c.latitude = '1.5'; delete c.longitude; "
                  "JSON.stringify(map.convertCoordinateToPoint(c)) === "
                  "JSON.stringify(map.convertCoordinateToPoint({ latitude: 1.5, longitude: 0 }))"),
              "true");
}

TEST_F(NumericCalls, AProxyOfAValueObjectIsAnObjectWithItsKeysAndNoMoreIsAskedOfIt) {
    evaluate("asked = []; spy = (target) => new Proxy(target, new Proxy({}, { get: (t, trap) => (...given) => { "
             "asked.push(trap + ' ' + String(given[1])); return Reflect[trap](...given) } }))");
    EXPECT_EQ(run("typeof map.convertCoordinateToPoint(spy(map.region)).x"), "number");
    EXPECT_EQ(run("asked.splice(0).join()"), "get latitude,get longitude,get latitude,get longitude");
    EXPECT_EQ(run("typeof map.convertCoordinateToPoint(spy({ latitude: '5', longitude: {} })).x"), "number");
    EXPECT_EQ(run("asked.splice(0).join()"), "get latitude,get longitude,get latitude,get longitude");
}

TEST_F(NumericCalls, WhatIsNoNumberIsReadOnceToo) {
    evaluate("reads = []; spied = (values) => new Proxy({}, { get(target, key) { reads.push(key); const value = "
             "values.shift(); if (value === 'throw') throw new Error('at ' + key); return value } })");
    const auto readsOf = [this](const char* values) {
        return run("r = null; try { r = JSON.stringify(map.convertPointToCoordinate(spied(" + std::string(values) +
                   "))) === JSON.stringify(map.convertPointToCoordinate({ x: 7, y: 8 })) } catch (e) { r = e.message } "
                   "r + ' ' + reads.splice(0).join()");
    };
    EXPECT_EQ(readsOf("[1, 2, 7, 8]"), "true x,y,x,y");
    EXPECT_EQ(readsOf("['', {}, '7', '8']"), "true x,y,x,y");
    EXPECT_EQ(readsOf("[1, 2, 7, '8']"), "true x,y,x,y");
    EXPECT_EQ(readsOf("[1, true, '7', 8]"), "true x,y,x,y");
    const std::string missing = "Object passed to 'convertPointToCoordinate' does not contain keys (\n    ";
    EXPECT_EQ(readsOf("[1, undefined, 7, 8]"), missing + "y\n) x,y");
    EXPECT_EQ(readsOf("[null, 2, 7, 8]"), missing + "x\n) x,y");
    EXPECT_EQ(consoleErrors(), "");
    EXPECT_EQ(readsOf("[1, 'throw', 7, 8]"), missing + "y\n) x,y");
    EXPECT_EQ(consoleErrors(), "Error: at y");
    EXPECT_EQ(run("errors = []; map.convertPointToCoordinate(spied([1, 2, 'throw', 8])).longitude === "
                  "map.convertPointToCoordinate({ x: 0, y: 8 }).longitude"),
              "true");
    EXPECT_EQ(consoleErrors(), "Error: at x");
}

TEST_F(NumericCalls, AGetterMayMakeTheSameCall) {
    EXPECT_EQ(run("p = { get x() { map.convertPointToCoordinate({ x: 99, y: 98 }); return 7 }, get y() { "
                  "map.convertPointToCoordinate({ x: '97', y: 96 }); return 8 } }; "
                  "JSON.stringify(map.convertPointToCoordinate(p)) === "
                  "JSON.stringify(map.convertPointToCoordinate({ x: 7, y: 8 }))"),
              "true");
}

TEST_F(NumericCalls, AGetterMayTakeTheMapAwayAndTheCallEndsAsItWould) {
    const std::string noMap = "threw: TypeError: The method was called on an object that is no map";
    for (const char* values : {"[1, 2]", "['1', 2]", "[1, '2']"}) {
        for (int read = 0; read < 4; ++read) {
            const auto victim = makeMap("victim");
            onMain([&] { victim->window()->setSize({320, 480}, 1); });
            settle();
            defineFunction("takeVictim", [this] { takeAway("victim"); });
            EXPECT_EQ(run("values = " + std::string(values) +
                          "; expected = JSON.stringify(victim.convertPointToCoordinate({ x: values[0], y: values[1] "
                          "})); reads = 0; argument = { get x() { return this.read(0) }, get y() { return this.read(1) "
                          "}, read(i) { if (reads++ === " +
                          std::to_string(read) +
                          ") takeVictim(); return values[i] } }; "
                          "JSON.stringify(victim.convertPointToCoordinate(argument)) === expected"),
                      "true")
                << values << ' ' << read;
            EXPECT_EQ(run("reads"), "4");
            EXPECT_EQ(run("victim.convertPointToCoordinate({ x: 1, y: 2 })"), noMap);
            EXPECT_EQ(run("victim.convertPointToCoordinate({ x: 1, y: '2' })"), noMap);
            settle();
            EXPECT_EQ(VeyraView::liveViews(), 1u);
        }
    }
}

TEST_F(NumericCalls, AGetterThatTakesAnotherMapAwayDoesNotMatter) {
    makeMap("other");
    defineFunction("takeOther", [this] { takeAway("other"); });
    EXPECT_EQ(run("JSON.stringify(map.convertPointToCoordinate({ x: 1, get y() { if (other.mapType === 0) takeOther(); "
                  "return 2 } })) === JSON.stringify(map.convertPointToCoordinate({ x: 1, y: 2 }))"),
              "true");
    makeMap("other");
    EXPECT_EQ(run("map.convertPointToCoordinate.call({}, { x: 1, get y() { takeOther(); return 2 } })"),
              "threw: TypeError: The method was called on an object that is no map");
}

TEST_F(NumericCalls, NothingMoreIsReadOnceThePageHasEnded) {
    defineFunction("endPage", [this] { context->invalidate(); });
    EXPECT_EQ(run("reads = []; map.convertRectToRegion(new Proxy({}, { get(target, key) { reads.push(key); "
                  "if (key === 'y') endPage(); return 1 } }))"),
              "threw: ReferenceError: The page of this map has gone");
    EXPECT_EQ(run("reads.join()"), "x,y");
    EXPECT_EQ(run("map.convertRectToRegion(new Proxy({}, { get(target, key) { reads.push(key) } }))"),
              "threw: ReferenceError: The page of this map has gone");
    EXPECT_EQ(run("reads.join()"), "x,y");
}

TEST_F(NumericCalls, AreFunctionsLikeTheOthers) {
    for (const auto& [method, argument] : conversions) {
        EXPECT_EQ(run("f = map." + std::string(method) +
                      "; [f.name, f.length, 'prototype' in f, Object.getOwnPropertyNames(f).sort()].join()"),
                  std::string(method) + ",0,false,length,name");
        EXPECT_EQ(run("try { new f({}) } catch (e) { e instanceof TypeError }"), "true");
        EXPECT_EQ(run("g = () => { 'use strict'; return f(" + std::string(argument) + ") }; g()"),
                  "threw: TypeError: The method was called on an object that is no map");
    }
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which keep memory of their own
TEST_F(NumericCalls, TakeNoMoreMemoryHoweverManyTheyAre) {
    const auto call = [this](const char* times) {
        return run("place = { latitude: 48.2, longitude: 16.4 }; for (let i = 0; i < " + std::string(times) +
                   "; ++i) point = map.convertCoordinateToPoint(place); Number.isFinite(point.x)");
    };
    ASSERT_EQ(call("1e6"), "true");
    const double before = resident();
    EXPECT_EQ(call("1e7"), "true");
    EXPECT_LT(resident() - before, 16);
}
#endif

} // namespace veyra
