// Annotations by identifier: what scripts may add, remove, select and read.
#include "Classes/VeyraAnnotationSO.h"
#include "Tests/Classes/ViewFixture.h"
#include "Tests/Platform/Foundation/CapturedLog.h"

#include <algorithm>

namespace veyra {

class AnnotationRegistry : public ShownMapFixture {
protected:
    AnnotationRegistry() {
        run("const pin = (identifier, more) => ({ latitude: 1, longitude: 2, identifier, ...more })");
    }

    /// The identifiers that scripts see, sorted.
    std::string annotations() { return run("map.annotations.sort().join()"); }
    /// Those of the annotations on the map, sorted.
    std::string onMap() {
        std::vector<std::string> found;
        for (const auto& annotation : mapView().annotations())
            if (const auto record = std::dynamic_pointer_cast<VeyraAnnotationSO>(annotation))
                found.push_back(record->identifier().description().utf8());
        std::sort(found.begin(), found.end());
        std::string joined;
        for (const std::string& identifier : found)
            joined += (joined.empty() ? "" : ",") + identifier;
        return joined;
    }
    std::shared_ptr<VeyraAnnotationSO> recordOnMap(const std::string& identifier) {
        for (const auto& annotation : mapView().annotations())
            if (const auto record = std::dynamic_pointer_cast<VeyraAnnotationSO>(annotation))
                if (record->identifier() == id(identifier.c_str()))
                    return record;
        return nullptr;
    }
    std::string logged(const std::string& script) {
        view().setVerboseDebugLoggingEnabled(true);
        const CapturedLog log;
        run(script);
        runMain();
        std::string all;
        for (const std::string& line : log.lines())
            all += (all.empty() ? "" : "\n") + line;
        return all;
    }
};

TEST_F(AnnotationRegistry, IsEmptyOnANewMapAndListsWhatWasAdded) {
    EXPECT_EQ(run("Array.isArray(map.annotations) && map.annotations.length"), "0");
    run("map.addAnnotation(pin('a'))");
    settle();
    EXPECT_EQ(run("JSON.stringify(map.annotations)"), R"(["a"])");
    EXPECT_EQ(onMap(), "a");
}

TEST_F(AnnotationRegistry, AddsWhenTheMainQueueRunsNotWhenTheScriptCalls) {
    run("map.addAnnotation(pin('a')); map.addAnnotations([pin('b'), pin('c')])");
    EXPECT_EQ(annotations(), "");
    runMain();
    EXPECT_EQ(annotations(), "a,b,c");
}

TEST_F(AnnotationRegistry, QueuesOneBlockForEachCall) {
    const auto queued = [&](const std::string& call) {
        const uint64_t before = dispatch_get_main_queue().queuedBlocks();
        run(call);
        return dispatch_get_main_queue().queuedBlocks() - before;
    };
    EXPECT_EQ(queued("map.addAnnotation(pin('a'))"), 1u);
    EXPECT_EQ(queued("map.addAnnotations([pin('b'), pin('c'), pin('d')])"), 1u);
    EXPECT_EQ(queued("map.addAnnotations([])"), 1u);
    EXPECT_EQ(queued("map.addAnnotations({ length: 'none' })"), 1u);
    EXPECT_EQ(queued("map.removeAnnotations(['a', 'b', 'c'])"), 1u);
    EXPECT_EQ(queued("map.removeAnnotations([])"), 1u);
    EXPECT_EQ(queued("map.removeAnnotation('d')"), 1u);
    EXPECT_EQ(queued("map.selectAnnotation('d', false)"), 1u);
    EXPECT_EQ(queued("map.deselectAnnotation('d', false)"), 1u);
    EXPECT_EQ(queued("try { map.addAnnotation({}) } catch (e) {}"), 0u);
}

TEST_F(AnnotationRegistry, CallsTakeEffectInTheirOrder) {
    run("map.addAnnotation(pin('a')); map.removeAnnotation('a'); map.addAnnotation(pin('a', { title: 'second' })); "
        "map.removeAnnotations(['b']); map.addAnnotations([pin('b')])");
    runMain();
    EXPECT_EQ(annotations(), "a,b");
    EXPECT_EQ(recordOnMap("a")->title(), id("second"));
}

TEST_F(AnnotationRegistry, AnIdentifierThatIsTakenIsDroppedAndLoggedWhenVerbose) {
    EXPECT_EQ(
        logged("map.addAnnotation(pin('a', { title: 'first' })); map.addAnnotation(pin('a', { title: 'second' }))"),
        "message: Error: duplicate annotation identfier 'a'");
    EXPECT_EQ(annotations(), "a");
    EXPECT_EQ(onMap(), "a");
    EXPECT_EQ(recordOnMap("a")->title(), id("first"));
}

TEST_F(AnnotationRegistry, OfTwoElementsWithOneIdentifierTheFirstIsAdded) {
    EXPECT_EQ(logged("map.addAnnotations([pin('a', { title: 'first' }), pin('a', { title: 'second' }), pin('b')])"),
              "message: Error: duplicate annotation identfier 'a'");
    EXPECT_EQ(onMap(), "a,b");
    EXPECT_EQ(recordOnMap("a")->title(), id("first"));
}

TEST_F(AnnotationRegistry, LogsNothingUnlessItIsVerbose) {
    const CapturedLog log;
    run("map.addAnnotations([pin('a'), pin('a')]); map.removeAnnotation('x'); map.selectAnnotation('x', true); "
        "map.deselectAnnotation('x', true)");
    runMain();
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(AnnotationRegistry, UnknownIdentifiersAreNamedInTheVerboseLog) {
    EXPECT_EQ(logged("map.removeAnnotation('x'); map.removeAnnotations(['y', 5]); map.selectAnnotation('z', true); "
                     "map.deselectAnnotation('z', false)"),
              "message: Map does not have annotation with Id 'x'; cannot remove\n"
              "message: Map does not have annotation with Id 'y'; cannot remove\n"
              "message: Map does not have annotation with Id '5'; cannot remove\n"
              "message: Map does not have annotation with Id 'z'; cannot select\n"
              "message: Map does not have annotation with Id 'z'; cannot deselect");
}

TEST_F(AnnotationRegistry, NullAndUndefinedFindNothingWithoutAWord) {
    EXPECT_EQ(logged("map.addAnnotation(pin('null')); map.addAnnotation(pin('undefined')); "
                     "map.removeAnnotation(null); map.removeAnnotation(undefined); map.removeAnnotation(); "
                     "map.removeAnnotations([null, undefined, , Symbol()]); map.selectAnnotation(null, true); "
                     "map.selectAnnotation(); map.deselectAnnotation(undefined, true)"),
              "");
    EXPECT_EQ(annotations(), "null,undefined");
}

TEST_F(AnnotationRegistry, AnElementWithANumericIdentifierIsReportedAndTheOthersAreAdded) {
    EXPECT_EQ(run("map.addAnnotations([pin('a'), pin(2), pin('c')])"),
              "threw: Error: Annotation identifiers must be of type string");
    runMain();
    EXPECT_EQ(annotations(), "a,c");
}

TEST_F(AnnotationRegistry, EveryBadElementIsReportedAndTheGoodOnesAreAdded) {
    EXPECT_EQ(
        run("map.addAnnotations([null, pin('a'), 'text', pin('b'), { latitude: 1 }, pin('c')])"),
        "threw: Error: Object passed to 'addAnnotations' does not contain keys (\n    longitude,\n    identifier\n)");
    runMain();
    EXPECT_EQ(annotations(), "a,b,c");
}

TEST_F(AnnotationRegistry, AnElementWhoseValueHasNoConversionSpoilsItselfAlone) {
    EXPECT_EQ(run("map.addAnnotations([pin('a', { latitude: {} }), pin('b'), pin('c', { draggable: [] }), pin('d')])"),
              "threw: Error: -[WebScriptObject boolValue]: unrecognized selector sent to instance");
    runMain();
    EXPECT_EQ(annotations(), "b,d");
}

TEST_F(AnnotationRegistry, ASingleValueWithoutAConversionIsAnErrorAndNothingIsAdded) {
    EXPECT_EQ(run("map.addAnnotation(pin('a', { latitude: {} }))"),
              "threw: Error: -[WebScriptObject doubleValue]: unrecognized selector sent to instance");
    runMain();
    EXPECT_EQ(annotations(), "");
}

TEST_F(AnnotationRegistry, ReadsAnElementsRequiredKeysThenItsIdentifierThenItsFormat) {
    run("reads = []; spy = new Proxy(pin('a'), { get(target, key) { reads.push(key); return target[key] } }); 0");
    const std::string expected =
        "latitude,longitude,identifier,identifier,latitude,longitude,identifier,title,subtitle,"
        "imageURL,xOffset,yOffset,hasLeftCalloutButton,hasRightCalloutButton,pinColor,"
        "pinAnimatesDrop,draggable";
    EXPECT_EQ(run("map.addAnnotation(spy); reads.splice(0).join()"), expected);
    EXPECT_EQ(run("map.addAnnotations([spy]); reads.splice(0).join()"), expected);
}

TEST_F(AnnotationRegistry, ReadsNoFurtherKeyOfAnElementThatIsRefused) {
    run("reads = []; spy = object => new Proxy(object, { get(target, key) { reads.push(key); return target[key] } }); "
        "0");
    run("try { map.addAnnotations([spy({ latitude: 1 }), spy(pin(7)), spy(pin('a', { longitude: {} }))]) } catch (e) "
        "{}");
    EXPECT_EQ(run("reads.join()"), "latitude,longitude,identifier,"
                                   "latitude,longitude,identifier,identifier,"
                                   "latitude,longitude,identifier,identifier,latitude,longitude");
}

TEST_F(AnnotationRegistry, ReadsNoFurtherKeyWhenThePageEndsInABatch) {
    defineFunction("endPage", [this] { context->invalidate(); });
    run("reads = []; spy = object => new Proxy(object, { get(target, key) { reads.push(key); return target[key] } }); "
        "map.addAnnotations([pin('a'), spy({ get latitude() { endPage(); return 1 }, longitude: 2, identifier: 'b' }), "
        "spy(pin('c'))])");
    EXPECT_EQ(run("reads.join()"), "latitude");
    runMain();
    EXPECT_EQ(onMap(), "a");
    context = ScriptContext::of(global);
}

TEST_F(AnnotationRegistry, AKeyOfABatchMayAddAnotherBatch) {
    EXPECT_EQ(
        run("map.addAnnotations([pin('a'), { get latitude() { map.addAnnotations([pin('x'), pin('y', { latitude: 5 "
            "})]); return 3 }, longitude: 4, identifier: 'b', title: 'outer' }, pin('c')])"),
        "undefined");
    runMain();
    EXPECT_EQ(onMap(), "a,b,c,x,y");
    EXPECT_EQ(degrees(recordOnMap("b")->coordinate()), degrees({3, 4}));
    EXPECT_EQ(recordOnMap("b")->title(), id("outer"));
    EXPECT_EQ(degrees(recordOnMap("y")->coordinate()), degrees({5, 2}));
}

TEST_F(AnnotationRegistry, AFalseLengthOfAnnotationsEndsAtThePagesEndOrItsOwn) {
    EXPECT_EQ(run("map.addAnnotations({ length: 3e6, 0: pin('first'), 2999999: pin('last') })"),
              "threw: Error: Invalid object passed to 'addAnnotations'");
    runMain();
    EXPECT_EQ(annotations(), "first,last");
}

TEST_F(AnnotationRegistry, IdentifiersAreTextsOfAnyKind) {
    const std::string identifiers =
        R"(['', ' ', 'ä', '__proto__', 'a\ud800', '\0', 'constructor', '5', 'x'.repeat(1e5)])";
    run("given = " + identifiers + "; map.addAnnotations(given.map(identifier => pin(identifier)))");
    runMain();
    EXPECT_EQ(run("seen = new Set(map.annotations); given.every(identifier => seen.has(identifier)) && seen.size"),
              "9");
    run("map.removeAnnotations(given)");
    runMain();
    EXPECT_EQ(annotations(), "");
    EXPECT_EQ(onMap(), "");
}

TEST_F(AnnotationRegistry, IdentifiersThatAreNoTextsAreRefused) {
    for (const char* identifier :
         {"5", "NaN", "-0", "Infinity", "true", "{}", "[]", "['a']", "new String('a')", "() => 'a'", "/a/",
          "globalThis", "map", "{ toString() { throw 1 } }", "new Proxy({}, { get() { throw 1 } })"}) {
        const std::string given = std::string("pin(") + identifier + ")";
        EXPECT_EQ(run("map.addAnnotation(" + given + ")"),
                  "threw: Error: Annotation identifiers must be of type string")
            << identifier;
        EXPECT_EQ(run("map.addAnnotations([" + given + "])"),
                  "threw: Error: Annotation identifiers must be of type string")
            << identifier;
    }
    for (const char* identifier : {"null", "undefined", "Symbol('a')", "5n"})
        EXPECT_EQ(run(std::string("map.addAnnotation(pin(") + identifier + "))"),
                  "threw: Error: Object passed to 'addAnnotation' does not contain keys (\n    identifier\n)")
            << identifier;
    runMain();
    EXPECT_EQ(annotations(), "");
}

TEST_F(AnnotationRegistry, AnyValueCanBeLookedFor) {
    EXPECT_EQ(logged("map.addAnnotation(pin('a'));"
                     "for (const value of [5, NaN, true, {}, [], ['a'], new String('a'), () => 'a', Symbol(), 5n, map,"
                     "                     { toString() { throw 1 } }, new Proxy({}, { get() { throw 1 } })])"
                     "  for (const call of ['removeAnnotation', 'selectAnnotation', 'deselectAnnotation'])"
                     "    map[call](value, true)")
                  .find("'a'"),
              std::string::npos);
    EXPECT_EQ(annotations(), "a");
}

TEST_F(AnnotationRegistry, NumbersDoNotNameWhatIsNamedByAText) {
    run("map.addAnnotation(pin('5')); map.removeAnnotation(5); map.removeAnnotation(new String('5'))");
    runMain();
    EXPECT_EQ(annotations(), "5");
}

TEST_F(AnnotationRegistry, RemovesOneOrManyAndFreesTheirRecords) {
    run("map.addAnnotations(['a', 'b', 'c', 'd'].map(identifier => pin(identifier)))");
    runMain();
    const std::weak_ptr<VeyraAnnotationSO> watched = recordOnMap("b");
    EXPECT_FALSE(watched.expired());
    run("map.removeAnnotation('a'); map.removeAnnotations(['b', 'unknown', 'c'])");
    settle();
    EXPECT_EQ(annotations(), "d");
    EXPECT_EQ(onMap(), "d");
}

TEST_F(AnnotationRegistry, AnnotationsAreGoneWithTheirMap) {
    run("map.addAnnotations(Array.from({ length: 100 }, (_, i) => pin('p' + i)))");
    settle();
    const std::weak_ptr<VeyraAnnotationSO> watched = recordOnMap("p7");
    instance().stop();
    settle();
    EXPECT_TRUE(watched.expired());
}

TEST_F(AnnotationRegistry, AFalseLengthOfIdentifiersTakesNoMemory) {
    run("map.addAnnotation(pin('last'))");
    EXPECT_EQ(run("map.removeAnnotations({ length: 3e6, 2999999: 'last' })"), "undefined");
    runMain();
    EXPECT_EQ(annotations(), "");
}

TEST_F(AnnotationRegistry, SelectingWhatIsNotOnTheMapChangesNothing) {
    run("map.selectAnnotation('x', true); map.deselectAnnotation('x', true)");
    settle();
    EXPECT_EQ(run("JSON.stringify(map.selectedAnnotations)"), "[]");
}

} // namespace veyra
