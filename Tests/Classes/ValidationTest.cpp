// The check of what scripts hand in: the function itself, and the messages that pages see of every method.
#include "Classes/VeyraLocationCoordinateSO.h"
#include "Classes/VeyraPointSO.h"
#include "Classes/VeyraRegionSO.h"
#include "Classes/WebScriptObject+VeyraExtras.h"
#include "Platform/Foundation/NSAssertionHandler.h"
#include "Platform/Foundation/NSException.h"
#include "Platform/WebKit/ScriptCall.h"
#include "Tests/Classes/ViewFixture.h"
#include "Tests/Platform/Foundation/CapturedLog.h"

namespace veyra {

class Validation : public MapFixture {
protected:
    /// Validates within a call of its own; `raised` is the message that a script would see, or "".
    bool validate(const id& object, Class primaryClass, const id& caller, const std::vector<NSString>& keys) {
        bool accepted = false;
        JSValueRef exception = nullptr;
        ScriptCall::run(*context, global, &exception, [&]() -> JSValueRef {
            accepted = VeyraValidateWebScriptObject(object, primaryClass, caller, keys);
            return nullptr;
        });
        raised = exception ? context->toNative(exception).valueForKey("message").string()->utf8() : "";
        return accepted;
    }
    /// The message with which the script throws an Error, or what it gives without throwing.
    std::string message(const std::string& script) {
        return run("(() => { try { " + script +
                   "; return 'nothing thrown' } catch (e) { "
                   "return e.constructor === Error ? e.message : 'no plain Error: ' + e } })()");
    }

    std::string raised;
};

TEST_F(Validation, NilRaisesNullObjectAndNoKeyIsLookedAt) {
    EXPECT_FALSE(validate(id(), VeyraRegionSO::classObject(), "the caller", {"latitude"}));
    EXPECT_EQ(raised, "Null object passed to 'the caller'");
}

TEST_F(Validation, WithoutACallerMessagesCarryTheTextOfNil) {
    EXPECT_FALSE(validate(id(), nullptr, id(), {}));
    EXPECT_EQ(raised, "Null object passed to '(null)'");
    EXPECT_FALSE(validate(id(5), nullptr, id(), {}));
    EXPECT_EQ(raised, "Invalid object passed to '(null)'");
    EXPECT_FALSE(validate(native("({})"), nullptr, id(), {"x"}));
    EXPECT_EQ(raised, "Object passed to '(null)' does not contain keys (\n    x\n)");
}

TEST_F(Validation, WhatIsNeitherAScriptObjectNorOfThePrimaryClassIsInvalid) {
    const auto point = std::make_shared<VeyraPointSO>();
    for (const id& object : {id(5), id(true), id("text"), id(WebUndefined{}), id(NSArray{}), id(point)}) {
        EXPECT_FALSE(validate(object, VeyraRegionSO::classObject(), "the caller", {}));
        EXPECT_EQ(raised, "Invalid object passed to 'the caller'");
    }
}

TEST_F(Validation, AnInstanceOfThePrimaryClassPassesAndItsKeysAreNotLookedAt) {
    EXPECT_TRUE(validate(id(std::make_shared<VeyraRegionSO>()), VeyraRegionSO::classObject(), "c", {"nowhere"}));
    EXPECT_EQ(raised, "");
}

TEST_F(Validation, AnInstanceOfASubclassOfThePrimaryClassPasses) {
    EXPECT_TRUE(validate(id(std::make_shared<VeyraRegionSO>()), NSObject::classObject(), "c", {"nowhere"}));
}

TEST_F(Validation, AnInstanceOfAnotherValueClassIsInvalidEvenWithAllKeys) {
    const auto region = std::make_shared<VeyraRegionSO>();
    EXPECT_FALSE(validate(id(region), VeyraLocationCoordinateSO::classObject(), "c", {"latitude", "longitude"}));
    EXPECT_EQ(raised, "Invalid object passed to 'c'");
}

TEST_F(Validation, WithoutAPrimaryClassAValueObjectIsInvalid) {
    EXPECT_FALSE(validate(id(std::make_shared<VeyraRegionSO>()), nullptr, "c", {"latitude"}));
    EXPECT_EQ(raised, "Invalid object passed to 'c'");
}

TEST_F(Validation, AScriptObjectWithAllKeysPasses) {
    EXPECT_TRUE(validate(native("({ a: 0, b: '', c: false })"), nullptr, "c", {"a", "b", "c"}));
    EXPECT_TRUE(validate(native("({})"), nullptr, "c", {}));
    EXPECT_TRUE(validate(native("Object.create({ a: 1 })"), nullptr, "c", {"a"})) << "inherited keys count";
    EXPECT_TRUE(validate(native("(() => 1)"), nullptr, "c", {"length", "name"}));
}

TEST_F(Validation, AllMissingKeysAreNamedInTheOrderRequired) {
    EXPECT_FALSE(validate(native("({ b: 1 })"), nullptr, "c", {"z", "b", "a"}));
    EXPECT_EQ(raised, "Object passed to 'c' does not contain keys (\n    z,\n    a\n)");
}

TEST_F(Validation, NullAndUndefinedKeysAreMissing) {
    EXPECT_FALSE(validate(native("({ a: null, b: undefined, c: 0 })"), nullptr, "c", {"a", "b", "c"}));
    EXPECT_EQ(raised, "Object passed to 'c' does not contain keys (\n    a,\n    b\n)");
}

TEST_F(Validation, KeysThatAreNotPurelyAlphanumericAreQuotedInTheMessage) {
    EXPECT_FALSE(validate(native("({})"), nullptr, "c", {"two words", "plain"}));
    EXPECT_EQ(raised, "Object passed to 'c' does not contain keys (\n    \"two words\",\n    plain\n)");
}

TEST_F(Validation, KeysAreReadOnceEachInTheOrderRequired) {
    evaluate("reads = []; proxy = new Proxy({}, { get(target, key) { reads.push(key); return 1 } })");
    EXPECT_TRUE(validate(native("proxy"), nullptr, "c", {"z", "b", "a"}));
    EXPECT_EQ(run("reads.join()"), "z,b,a");
}

TEST_F(Validation, OutsideOfAScriptCallTheMessageIsLogged) {
    const CapturedLog log;
    EXPECT_FALSE(VeyraValidateWebScriptObject(id(), nullptr, "c", {}));
    EXPECT_EQ(log.lines(),
              std::vector<std::string>{"message: Script exception outside of a call: Null object passed to 'c'"});
}

namespace {

struct Assertion {
    std::string function, file, description;
    int line;
};

/// Notes failures instead of raising them.
class RecordingHandler : public NSAssertionHandler {
public:
    explicit RecordingHandler(std::vector<Assertion>& failures) : _failures(failures) {}
    void handleFailureInFunction(const NSString& function, const NSString& file, int line,
                                 const NSString& description) override {
        _failures.push_back({function.utf8(), file.utf8(), description.utf8(), line});
    }

private:
    std::vector<Assertion>& _failures;
};

} // namespace

TEST_F(Validation, ThePrimaryClassMustNotBeTheScriptObjectsOwn) {
    std::vector<Assertion> failures;
    auto former = NSAssertionHandler::setCurrentHandler(std::make_unique<RecordingHandler>(failures));
    const Class cls = WebScriptObject::classObject();
    EXPECT_TRUE(validate(native("({})"), cls, "c", {"absent"})) << "an instance of the primary class";
    EXPECT_FALSE(validate(id(5), cls, "c", {"absent"}));
    EXPECT_EQ(raised, "Invalid object passed to 'c'");
    EXPECT_FALSE(validate(id(), cls, "c", {"absent"}));
    EXPECT_EQ(raised, "Null object passed to 'c'");
    NSAssertionHandler::setCurrentHandler(std::move(former));

    ASSERT_EQ(failures.size(), 2u) << "nil is refused before";
    for (const Assertion& failure : failures) {
        EXPECT_EQ(failure.function, "BOOL VeyraValidateWebScriptObject(WebScriptObject *, Class, NSString *, ...)");
        EXPECT_EQ(failure.file, "WebScriptObject (VeyraExtras)");
        EXPECT_EQ(failure.line, 18);
        EXPECT_EQ(failure.description,
                  "WebScriptObject cannot be specified as PrimaryClass for validating webscript input");
    }
}

TEST_F(Validation, TheOrdinaryAssertionHandlerRaises) {
    const CapturedLog log;
    EXPECT_THROW(VeyraValidateWebScriptObject(native("({})"), WebScriptObject::classObject(), "c", {}), NSException);
    EXPECT_EQ(log.lines().size(), 1u);
}

// What pages see.

TEST_F(Validation, EveryMethodThatTakesAnObjectNamesItselfInItsMessages) {
    const struct {
        const char *method, *keys;
    } methods[] = {
        {"setRegion", "    latitude,\n    longitude,\n    latitudeDelta,\n    longitudeDelta"},
        {"setCenterCoordinate", "    latitude,\n    longitude"},
        {"regionThatFits", "    latitude,\n    longitude,\n    latitudeDelta,\n    longitudeDelta"},
        {"convertCoordinateToPoint", "    latitude,\n    longitude"},
        {"convertPointToCoordinate", "    x,\n    y"},
        {"convertRegionToRect", "    latitude,\n    longitude,\n    latitudeDelta,\n    longitudeDelta"},
        {"convertRectToRegion", "    x,\n    y,\n    width,\n    height"},
        {"addAnnotation", "    latitude,\n    longitude,\n    identifier"},
        {"addAnnotations", "    length"},
        {"removeAnnotations", "    length"},
        {"addOverlays", "    length"},
        {"removeOverlays", "    length"},
    };
    for (const auto& [method, keys] : methods) {
        const std::string call = "map." + std::string(method), quoted = "'" + std::string(method) + "'";
        EXPECT_EQ(message(call + "(null)"), "Null object passed to " + quoted);
        EXPECT_EQ(message(call + "({})"), "Object passed to " + quoted + " does not contain keys (\n" + keys + "\n)");
        for (const char* argument : {"", "undefined", "5", "true", "'text'", "Symbol('s')", "10n", "map.userLocation"})
            EXPECT_EQ(message(call + "(" + argument + ")"), "Invalid object passed to " + quoted) << argument;
    }
}

TEST_F(Validation, EveryMethodThatTakesAnOverlayNamesItsMaking) {
    for (const char* method :
         {"addOverlay", "insertOverlayAtIndex", "insertOverlayAboveOverlay", "insertOverlayBelowOverlay"}) {
        const std::string call = "map." + std::string(method);
        EXPECT_EQ(message(call + "(null, 0)"), "Null object passed to 'Creating overlay'");
        EXPECT_EQ(message(call + "({}, 0)"),
                  "Object passed to 'Creating overlay' does not contain keys (\n    type,\n    id\n)");
        for (const char* argument : {"undefined", "5", "'text'", "map.region"})
            EXPECT_EQ(message(call + "(" + argument + ", 0)"), "Invalid object passed to 'Creating overlay'");
        EXPECT_EQ(message(call + "({ type: 'circle', id: 'c', radius: 1 }, 0)"),
                  "Object passed to 'Constructing circle' does not contain keys (\n    latitude,\n    longitude\n)");
        EXPECT_EQ(message(call + "({ type: 'polyline', id: 'l' }, 0)"),
                  "Object passed to 'Constructing polyline' does not contain keys (\n    coordinates\n)");
        EXPECT_EQ(message(call + "({ type: 'polygon', id: 'p' }, 0)"),
                  "Object passed to 'Constructing polygon' does not contain keys (\n    coordinates\n)");
        EXPECT_EQ(message(call + "({ type: 'polyline', id: 'l', coordinates: [1, 2, 3] }, 0)"),
                  "Constructing polyline, number of values in coordinates array must be even");
        EXPECT_EQ(message(call + "({ type: 'polygon', id: 'p', coordinates: [1] }, 0)"),
                  "Constructing polygon, number of values in coordinates array must be even");
        EXPECT_EQ(message(call + "({ type: 'Circle', id: 'c' }, 0)"), "nothing thrown") << "an unknown type is silent";
    }
}

TEST_F(Validation, ARefusedOverlayIsTheOnlyFaultReportedWhateverTheIndex) {
    EXPECT_EQ(message("map.insertOverlayAtIndex()"), "Invalid object passed to 'Creating overlay'");
    EXPECT_EQ(message("map.insertOverlayAtIndex(null, 'first')"), "Null object passed to 'Creating overlay'");
    EXPECT_EQ(message("map.insertOverlayAtIndex({ type: 'star', id: 's' }, 'first')"), "nothing thrown");
}

TEST_F(Validation, AnIndexThatIsNoNumberIsRefused) {
    EXPECT_EQ(message("map.exchangeOverlays('0', 1)"),
              "-[NSString unsignedIntegerValue]: unrecognized selector sent to instance");
    EXPECT_EQ(message("map.exchangeOverlays(0, {})"),
              "-[WebScriptObject unsignedIntegerValue]: unrecognized selector sent to instance");
    EXPECT_EQ(message("map.exchangeOverlays(0)"),
              "-[WebUndefined unsignedIntegerValue]: unrecognized selector sent to instance");
    EXPECT_EQ(message("map.exchangeOverlays(0, -1)"), "nothing thrown");
}

TEST_F(Validation, AnAssignedPropertyIsValidatedWithoutAName) {
    EXPECT_EQ(message("map.region = null"), "Null object passed to '(null)'");
    EXPECT_EQ(message("map.centerCoordinate = null"), "Null object passed to '(null)'");
    EXPECT_EQ(message("map.region = 'here'"), "Invalid object passed to '(null)'");
    EXPECT_EQ(message("map.region = { latitudeDelta: 1, longitude: 2 }"),
              "Object passed to '(null)' does not contain keys (\n    latitude,\n    longitudeDelta\n)");
    EXPECT_EQ(message("map.centerCoordinate = []"),
              "Object passed to '(null)' does not contain keys (\n    latitude,\n    longitude\n)");
}

TEST_F(Validation, AnnotationIdentifiersMustBeStrings) {
    for (const char* identifier : {"5", "true", "{}", "[]"})
        EXPECT_EQ(
            message(std::string("map.addAnnotation({ latitude: 1, longitude: 2, identifier: ") + identifier + "})"),
            "Annotation identifiers must be of type string");
    EXPECT_EQ(message("map.addAnnotation({ latitude: 1, longitude: 2, identifier: '' })"), "nothing thrown");
}

TEST_F(Validation, ABatchRaisesTheFaultOfItsLastBadElement) {
    EXPECT_EQ(message("map.addAnnotations([null, { latitude: 1, longitude: 2, identifier: 3 }, "
                      "{ latitude: 1, longitude: 2, identifier: 'good' }])"),
              "Annotation identifiers must be of type string");
    EXPECT_EQ(message("map.addAnnotations([{ latitude: 1, longitude: 2, identifier: 3 }, 'text'])"),
              "Invalid object passed to 'addAnnotations'");
    EXPECT_EQ(message("map.addAnnotations([{ latitude: 1, longitude: 2, identifier: 3 }, { latitude: 1 }])"),
              "Object passed to 'addAnnotations' does not contain keys (\n    longitude,\n    identifier\n)");
    EXPECT_EQ(message("map.addOverlays([5, { type: 'polygon', id: 'p' }, { type: 'none', id: 'n' }])"),
              "Object passed to 'Constructing polygon' does not contain keys (\n    coordinates\n)");
    EXPECT_EQ(message("map.addAnnotations([])"), "nothing thrown");
    EXPECT_EQ(message("map.removeAnnotations(['unknown', 5, null, {}])"), "nothing thrown");
    EXPECT_EQ(message("map.removeOverlays(['unknown', 5, {}])"), "nothing thrown");
}

TEST_F(Validation, MethodsThatTakeIdentifiersAcceptAnything) {
    for (const char* method : {"removeAnnotation", "selectAnnotation", "deselectAnnotation", "removeOverlay"})
        for (const char* argument : {"'unknown'", "5", "{}", "true"})
            EXPECT_EQ(message("map." + std::string(method) + "(" + argument + ")"), "nothing thrown");
}

TEST_F(Validation, ARefusedCallChangesNothing) {
    layOut();
    const auto before = mapView().region();
    for (const char* call : {"map.setRegion({ latitude: 1, longitude: 1, latitudeDelta: 1 })", "map.setRegion('x')",
                             "map.setCenterCoordinate({ latitude: 1 })", "map.region = null"})
        EXPECT_NE(message(call), "nothing thrown");
    runMain();
    EXPECT_EQ(degrees(mapView().region().center), degrees(before.center));
    EXPECT_EQ(mapView().region().span, before.span);
}

TEST_F(Validation, AThrownMessageIsAnErrorOfThePage) {
    EXPECT_EQ(run("try { map.setRegion(null) } catch (e) { [e instanceof Error, e.name, typeof e.stack].join() }"),
              "true,Error,string");
}

} // namespace veyra
