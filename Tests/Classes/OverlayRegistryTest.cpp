// The registry of overlays and the operations on it: what is registered, what is on the map in which order, what is
// logged and what the page hears.
#include "Platform/MapKit/MKPolyline.h"
#include "Tests/Classes/OverlayFixture.h"
#include "Tests/Platform/Foundation/CapturedLog.h"

#include <algorithm>
#include <random>
#include <set>

namespace veyra {

namespace {

class OverlayRegistry : public OverlayFixture {
protected:
    OverlayRegistry() {
        // line('a') is in sight, far('a') is not.
        run("globalThis.line = id => ({ type: 'polyline', id, coordinates: [0, 0, 1, 1] });"
            "globalThis.far = id => ({ type: 'polyline', id, coordinates: [60, 100, 61, 101] });");
        view().setVerboseDebugLoggingEnabled(true);
    }
    /// What the script logs.
    std::string logged(const std::string& script) {
        const CapturedLog log;
        EXPECT_EQ(run(script), "undefined");
        runMain();
        std::string text;
        for (const std::string& line : log.lines())
            text += (text.empty() ? "" : "\n") + line;
        return text;
    }
};

} // namespace

TEST_F(OverlayRegistry, AFreshViewHasNoOverlays) {
    EXPECT_EQ(run("Array.isArray(map.overlays) + ' ' + map.overlays.length"), "true 0");
}

TEST_F(OverlayRegistry, OverlaysAreIdentifiersOfWhatWasAdded) {
    run("map.addOverlay(line('a')); map.addOverlay(far('b'))");
    EXPECT_EQ(registered(), "a b"); // at once, before the map has heard of them
    EXPECT_EQ(order(), "a b");
}

TEST_F(OverlayRegistry, AnIdentifierIsTakenOnceAndTheEarlierOneStays) {
    EXPECT_EQ(logged("map.addOverlay(line('a')); map.addOverlay(far('a'))"),
              "message: Map already has overlay with Id 'a'");
    const auto found = onMap();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(std::dynamic_pointer_cast<MKPolyline>(found[0])->points()[0], MKMapPointForCoordinate({0, 0}));
    EXPECT_EQ(logged("map.insertOverlayAtIndex(line('a'), 0)"), "message: Map already has overlay with Id 'a'");
    EXPECT_EQ(logged("map.insertOverlayAboveOverlay(line('a'), 'a')"), "message: Map already has overlay with Id 'a'");
    EXPECT_EQ(logged("map.insertOverlayBelowOverlay(line('a'), 'none')"),
              "message: Map already has overlay with Id 'a'");
    EXPECT_EQ(order(), "a");
}

TEST_F(OverlayRegistry, NothingIsLoggedUnlessItIsVerbose) {
    view().setVerboseDebugLoggingEnabled(false);
    EXPECT_EQ(logged("map.addOverlays([line('a'), line('a')]); map.removeOverlay('x'); map.removeOverlays(['x']);"
                     "map.insertOverlayAboveOverlay(line('b'), 'x')"),
              "");
}

TEST_F(OverlayRegistry, ABatchGoesOnBehindABadElement) {
    EXPECT_EQ(run("map.addOverlays([line('a'), { type: 'star', id: 'b' }, line('c')])"), "undefined");
    EXPECT_EQ(registered(), "a c");
    EXPECT_EQ(order(), "a c");
}

TEST_F(OverlayRegistry, ABatchWithElementsThatAreRefusedOrRaiseThrowsTheLastReasonAndAddsTheGoodOnes) {
    EXPECT_EQ(run("map.addOverlays([line('a'), 5, { ...line('b'), strokeColor: 'f' }, line('c'),"
                  "{ ...line('d'), lineWidth: {} }, line('e')])"),
              "threw: Error: -[WebScriptObject floatValue]: unrecognized selector sent to instance");
    EXPECT_EQ(run("map.addOverlays([{ ...line('f'), lineCap: [] }, { type: 'polyline', id: 'g', coordinates: [1] }])"),
              "threw: Error: Constructing polyline, number of values in coordinates array must be even");
    EXPECT_EQ(registered(), "a c e");
    EXPECT_EQ(order(), "a c e");
}

TEST_F(OverlayRegistry, ABatchGoesOnBehindAnIdentifierThatGoesBetweenTwoReads) {
    EXPECT_EQ(run("let reads = 0; map.addOverlays([line('a'), { type: 'polyline', coordinates: [0, 0, 1, 1],"
                  "get id() { return reads++ ? null : 'b'; } }, line('c')])"),
              "threw: Error: -[NSMutableDictionary setObject:forKey:]: key cannot be nil");
    EXPECT_EQ(registered(), "a c");
    EXPECT_EQ(order(), "a c");
}

TEST_F(OverlayRegistry, WhatIsNoArrayIsRefusedByName) {
    run("map.addOverlay(line('a'))");
    for (const std::string name : {"addOverlays", "removeOverlays"}) {
        EXPECT_EQ(run("map." + name + "(null)"), "threw: Error: Null object passed to '" + name + "'");
        EXPECT_EQ(run("map." + name + "()"), "threw: Error: Invalid object passed to '" + name + "'");
        EXPECT_EQ(run("map." + name + "('a')"), "threw: Error: Invalid object passed to '" + name + "'");
        EXPECT_EQ(run("map." + name + "({})"),
                  "threw: Error: Object passed to '" + name + "' does not contain keys (\n    length\n)");
    }
    EXPECT_EQ(order(), "a");
}

TEST_F(OverlayRegistry, WhatIsNoOverlayIsRefusedByEveryOperation) {
    for (const char* call : {"addOverlay(null)", "insertOverlayAtIndex(null, 0)",
                             "insertOverlayAboveOverlay(null, 'a')", "insertOverlayBelowOverlay(null, 'a')"})
        EXPECT_EQ(run(std::string("map.") + call), "threw: Error: Null object passed to 'Creating overlay'");
    EXPECT_EQ(run("map.addOverlay({})"),
              "threw: Error: Object passed to 'Creating overlay' does not contain keys (\n    type,\n    id\n)");
    EXPECT_EQ(run("map.addOverlay(undefined)"), "threw: Error: Invalid object passed to 'Creating overlay'");
    EXPECT_EQ(registered(), "");
}

TEST_F(OverlayRegistry, ABatchOfManyMissingElementsSaysSoOnce) {
    EXPECT_EQ(run("map.addOverlays({ length: 100000, 0: line('a'), 99999: line('b') })"),
              "threw: Error: Invalid object passed to 'Creating overlay'");
    EXPECT_EQ(order(), "a b");
}

TEST_F(OverlayRegistry, AnArrayMayChangeWhileItIsRead) {
    // Its length is read once; what goes missing is no overlay, what comes behind is not looked at.
    EXPECT_EQ(run("globalThis.all = [line('a'), { type: 'polyline', coordinates: [], get id() { all.length = 2; "
                  "all[2] = line('c'); all.push(line('e')); return 'b'; } }, line('x'), line('d')];"
                  "map.addOverlays(all)"),
              "undefined");
    EXPECT_EQ(registered(), "a b c e");
}

TEST_F(OverlayRegistry, ABatchMayBeAnyArrayLikeObject) {
    EXPECT_EQ(run("map.addOverlays(new Proxy([line('a'), line('b')], {})); map.removeOverlays(new Proxy(['a'], {}));"
                  "map.addOverlays({ length: 1.9, 0: line('c'), 1: line('d') });"
                  "map.removeOverlays(new Set(['c']))")
                  .find("threw: Error: Object passed to 'removeOverlays' does not contain keys"),
              0u);
    EXPECT_EQ(order(), "b c");
}

TEST_F(OverlayRegistry, ABatchWithAnIdentifierTwiceAddsTheFirst) {
    EXPECT_EQ(logged("map.addOverlays([line('a'), line('b'), far('a')])"),
              "message: Map already has overlay with Id 'a'");
    EXPECT_EQ(order(), "a b");
    EXPECT_EQ(std::dynamic_pointer_cast<MKPolyline>(onMap()[0])->points()[0], MKMapPointForCoordinate({0, 0}));
}

TEST_F(OverlayRegistry, ABatchWhoseLengthIsNoNumberAddsAndRemovesNothing) {
    run("map.addOverlay(line('a'))");
    EXPECT_EQ(run("map.addOverlays({ length: '1', 0: line('b') })"), "undefined");
    EXPECT_EQ(run("map.removeOverlays({ length: '1', 0: 'a' })"), "undefined");
    EXPECT_EQ(order(), "a");
}

TEST_F(OverlayRegistry, RemovingTakesKnownOnesAndLogsTheOthers) {
    run("map.addOverlays([line('a'), line('b'), line('c')])");
    EXPECT_EQ(logged("map.removeOverlays(['b', 'x'])"),
              "message: Map does not have overlay with Id 'x'; cannot remove");
    EXPECT_EQ(registered(), "a c");
    EXPECT_EQ(order(), "a c");
    EXPECT_EQ(logged("map.removeOverlay('a'); map.removeOverlay('a')"),
              "message: Map does not have overlay with Id 'a'; cannot remove");
    EXPECT_EQ(order(), "c");
}

TEST_F(OverlayRegistry, ARemovedIdentifierIsFreeAgain) {
    EXPECT_EQ(logged("map.addOverlay(line('a')); map.removeOverlay('a'); map.addOverlay(far('a'))"), "");
    EXPECT_EQ(std::dynamic_pointer_cast<MKPolyline>(onMap()[0])->points()[0], MKMapPointForCoordinate({60, 100}));
}

TEST_F(OverlayRegistry, AnIndexIsAPlaceInTheDrawingOrder) {
    run("map.insertOverlayAtIndex(line('a'), 0); map.insertOverlayAtIndex(line('b'), 0);"
        "map.insertOverlayAtIndex(line('c'), 1.9); map.insertOverlayAtIndex(line('d'), 99);"
        "map.insertOverlayAtIndex(line('e'), -1); map.insertOverlayAtIndex(line('f'), null);"
        "map.insertOverlayAtIndex(line('g'), NaN); map.insertOverlayAtIndex(line('h'), true)");
    EXPECT_EQ(order(), "g h f b c a d e");
}

TEST_F(OverlayRegistry, AnIndexThatIsNoNumberIsAnErrorAndChangesNothing) {
    for (const char* index : {"'0'", "{}", "undefined"}) {
        EXPECT_EQ(run(std::string("map.insertOverlayAtIndex(line('a'), ") + index + ")").find("threw: Error: -["), 0u);
    }
    EXPECT_EQ(registered(), "");
    EXPECT_EQ(order(), "");
    EXPECT_EQ(run("map.addOverlay(line('a')); map.insertOverlayAtIndex(line('a'), 'first')"),
              "undefined"); // taken: over
}

TEST_F(OverlayRegistry, ExchangingGoesByPlaces) {
    run("map.addOverlays([line('a'), line('b'), line('c')]); map.exchangeOverlays(0, 2)");
    EXPECT_EQ(order(), "c b a");
    EXPECT_EQ(logged("map.exchangeOverlays(0, 5)"),
              "message: MKMapView: there are no two overlays at the indexes 0 and 5 to exchange");
    EXPECT_EQ(logged("map.exchangeOverlays(-1, 0)"),
              "message: MKMapView: there are no two overlays at the indexes 18446744073709551615 and 0 to exchange");
    EXPECT_EQ(logged("map.exchangeOverlays(1e300, Infinity)"),
              "message: MKMapView: there are no two overlays at the indexes 18446744073709551615 and "
              "18446744073709551615 to exchange");
    EXPECT_EQ(logged("map.exchangeOverlays(0.9, NaN); map.exchangeOverlays(null, 0)"), "");
    EXPECT_EQ(order(), "c b a");
}

TEST_F(OverlayRegistry, InsertingNextToAnotherOne) {
    run("map.addOverlays([line('a'), line('b')]); map.insertOverlayAboveOverlay(line('c'), 'a');"
        "map.insertOverlayBelowOverlay(line('d'), 'a')");
    EXPECT_EQ(order(), "d a c b");
}

TEST_F(OverlayRegistry, InsertingNextToAnUnknownOneRegistersItAllTheSame) {
    EXPECT_EQ(logged("map.insertOverlayAboveOverlay(line('a'), 'x')"),
              "message: Map does not have overlay with Id 'x'");
    EXPECT_EQ(logged("map.insertOverlayBelowOverlay(line('b'), 'b')"),
              "message: Map does not have overlay with Id 'b'");
    EXPECT_EQ(registered(), "a b");
    EXPECT_EQ(order(), "");
    EXPECT_EQ(logged("map.addOverlay(line('a'))"), "message: Map already has overlay with Id 'a'");
    EXPECT_EQ(logged("map.removeOverlays(['a', 'b'])"), "");
    EXPECT_EQ(registered(), "");
}

TEST_F(OverlayRegistry, InsertingNextToOneThatIsRegisteredButNotOnTheMapAppends) {
    run("map.addOverlay(line('a')); map.insertOverlayAboveOverlay(line('b'), 'x');"
        "map.insertOverlayBelowOverlay(line('c'), 'b')");
    EXPECT_EQ(order(), "a c");
}

TEST_F(OverlayRegistry, InsertingNextToOneRemovedInTheSameTurnMissesIt) {
    EXPECT_EQ(
        logged("map.addOverlay(line('a')); map.removeOverlay('a'); map.insertOverlayAboveOverlay(line('b'), 'a')"),
        "message: Map does not have overlay with Id 'a'");
}

TEST_F(OverlayRegistry, AnElementMayBeAnAccessorThatChangesTheRegistry) {
    EXPECT_EQ(run("map.addOverlays([line('a'), { type: 'polyline', coordinates: [0, 0, 1, 1],"
                  "get id() { map.removeOverlay('a'); map.addOverlay(line('inner')); return 'b'; } }, line('a')])"),
              "undefined");
    EXPECT_EQ(registered(), "a b inner");
}

TEST_F(OverlayRegistry, OverlaysThatComeIntoSightTogetherAreOneEventWithAnArgumentForEach) {
    record();
    run("map.addOverlay(line('a')); map.addOverlays([far('b'), line(3), line('c')])");
    settle();
    EXPECT_EQ(recorded(), "mapDidAddOverlays \"a\" 3 \"c\"");
    onMain([&] { mapView().setCenterCoordinate({60, 100}); });
    settle();
    EXPECT_NE(recorded().find("mapDidAddOverlays \"b\""), std::string::npos);
}

TEST_F(OverlayRegistry, AnOverlayMayBeTakenAwayAndAddedAgainInItsOwnEvent) {
    run("globalThis.seen = ''; map.listener = { mapDidAddOverlays(...identifiers) { seen += identifiers;"
        "map.removeOverlay('a'); if (seen.length < 3) map.addOverlay(line('a')); } }; map.addOverlay(line('a'))");
    for (int turn = 0; turn < 4; ++turn)
        settle();
    EXPECT_EQ(run("seen"), "aaa");
    EXPECT_EQ(registered(), "");
    EXPECT_EQ(order(), "");
}

TEST_F(OverlayRegistry, AnOverlayOfAnotherKindGetsNoView) {
    const CLLocationCoordinate2D coordinates[] = {{0, 0}, {1, 1}};
    const std::shared_ptr<MKOverlay> stranger = MKPolyline::polylineWithCoordinates(coordinates);
    onMain([&] { EXPECT_EQ(view().mapViewViewForOverlay(mapView(), stranger), nullptr); });
}

TEST_F(OverlayRegistry, ViewsOfAnotherKindAreLeftOutOfTheEventThatIsSentAllTheSame) {
    record();
    const std::shared_ptr<MKOverlay> stranger = MKPolyline::polylineWithCoordinates({});
    run("map.addOverlay(far('a'))");
    const auto ours = onMap()[0];
    onMain([&] {
        const auto foreign = MKOverlayView::initWithOverlay(stranger);
        view().mapViewDidAddOverlayViews(mapView(), {foreign, ours->overlayView(), foreign});
        view().mapViewDidAddOverlayViews(mapView(), {foreign});
    });
    settle();
    EXPECT_EQ(recorded(), "mapDidAddOverlays \"a\"\nmapDidAddOverlays");
}

TEST_F(OverlayRegistry, OverlaysAndTheirScriptObjectsGoWithTheirRemoval) {
    run("map.addOverlay({ ...line({}), lineDashPattern: [{}] })");
    const std::weak_ptr<VeyraOverlay> overlay = onMap()[0];
    run("map.removeOverlays(map.overlays)");
    settle();
    collectGarbage();
    for (int wait = 0; wait < 1000 && !overlay.expired(); ++wait) {
        g_usleep(1000);
        settle();
    }
    EXPECT_TRUE(overlay.expired());
}

// Every operation in random order, against a model that knows what is registered, what is on the map, and which events
// the page gets.
TEST_F(OverlayRegistry, FollowsAModelThroughRandomOperations) {
    std::mt19937 random(29);
    const auto below = [&](size_t bound) { return std::uniform_int_distribution<size_t>(0, bound - 1)(random); };
    const auto name = [&] { return std::string(1, static_cast<char>('a' + below(9))); };
    const CapturedLog log; // which other tests look at
    std::set<std::string> known;
    std::vector<std::string> drawn;
    record();
    const auto place = [&](const std::string& one) { return std::find(drawn.begin(), drawn.end(), one); };
    const auto insert = [&](const std::string& one, size_t index) {
        drawn.insert(drawn.begin() + static_cast<ptrdiff_t>(std::min(index, drawn.size())), one);
    };
    const auto quoted = [](const std::string& one) { return "'" + one + "'"; };
    for (int turn = 0; turn < 1500; ++turn) {
        std::set<std::string> fresh; // put on the map in this turn of the main queue, and still there
        for (size_t operation = 0, count = 1 + below(3); operation < count; ++operation) {
            const std::string one = name(), other = name();
            const size_t first = below(8), second = below(8);
            const auto take = [&](const std::string& gone) {
                if (known.erase(gone) > 0 && place(gone) != drawn.end())
                    drawn.erase(place(gone));
                fresh.erase(gone);
            };
            const auto put = [&](const std::string& come, size_t index) {
                if (known.insert(come).second) {
                    insert(come, index);
                    fresh.insert(come);
                }
            };
            std::string script;
            switch (below(8)) {
            case 0:
                script = "addOverlay(line(" + quoted(one) + "))";
                put(one, SIZE_MAX);
                break;
            case 1:
                script =
                    "addOverlays([line(" + quoted(one) + "), { type: 'none', id: 1 }, line(" + quoted(other) + ")])";
                put(one, SIZE_MAX);
                put(other, SIZE_MAX);
                break;
            case 2:
                script = "removeOverlay(" + quoted(one) + ")";
                take(one);
                break;
            case 3:
                script = "removeOverlays([" + quoted(one) + ", " + quoted(other) + "])";
                take(one);
                take(other);
                break;
            case 4:
                script = "insertOverlayAtIndex(line(" + quoted(one) + "), " + std::to_string(first) + ")";
                put(one, first);
                break;
            case 5:
                script = "exchangeOverlays(" + std::to_string(first) + ", " + std::to_string(second) + ")";
                if (first < drawn.size() && second < drawn.size())
                    std::swap(drawn[first], drawn[second]);
                break;
            default: {
                const bool above = below(2) == 0;
                script = std::string(above ? "insertOverlayAboveOverlay" : "insertOverlayBelowOverlay") + "(line(" +
                         quoted(one) + "), " + quoted(other) + ")";
                const bool hasSibling = known.contains(other);
                const auto at = place(other);
                if (!hasSibling)
                    known.insert(one);
                else
                    put(one, at == drawn.end() ? SIZE_MAX : static_cast<size_t>(at - drawn.begin()) + (above ? 1 : 0));
            }
            }
            ASSERT_EQ(run("map." + script), "undefined");
            std::string expected;
            for (const std::string& identifier : known)
                expected += (expected.empty() ? "" : " ") + identifier;
            ASSERT_EQ(registered(), expected) << script;
        }
        std::string expected, event;
        for (const std::string& identifier : drawn) {
            expected += (expected.empty() ? "" : " ") + identifier;
            if (fresh.contains(identifier))
                event += " \"" + identifier + "\"";
        }
        ASSERT_EQ(order(), expected);
        settle();
        ASSERT_EQ(recorded(), event.empty() ? "" : "mapDidAddOverlays" + event);
    }
}

} // namespace veyra
