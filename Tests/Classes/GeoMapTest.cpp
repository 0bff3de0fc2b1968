// The page's "GeoMap" object and the functions that make it.
#include "Classes/VeyraConstants.h"
#include "Classes/VeyraScriptClass.h"
#include "Tests/Classes/ViewFixture.h"
#include "Tests/Platform/Foundation/CapturedLog.h"

namespace veyra {

class GeoMap : public ViewFixture {
protected:
    bool create(const char* name) {
        return JSClassCreateAndInsertObjectInContext(name, &classRef, &classObject, global, &error);
    }
    JSObjectRef object(const std::string& script) { return JSValueToObject(global, evaluate(script), nullptr); }
    std::string entry(const char* key) const { return error->userInfo().at(key).string()->utf8(); }
    void expectError(const char* exception, const char* message) const {
        ASSERT_NE(error, nullptr);
        EXPECT_EQ(error->domain().utf8(), "NSURLErrorDomain");
        EXPECT_EQ(error->code(), -1);
        EXPECT_EQ(error->userInfo().size(), 2u);
        EXPECT_EQ(entry("exception"), exception);
        EXPECT_EQ(entry("message"), message);
    }

    JSClassRef classRef = nullptr;
    JSObjectRef classObject = nullptr;
    std::shared_ptr<NSError> error;
};

TEST_F(GeoMap, HasSixConstantsInTheirOrder) {
    makeMap();
    EXPECT_EQ(run("Object.keys(GeoMap).map(key => key + ' ' + GeoMap[key]).join('\\n')"),
              "kVeyraTypeStandard 0\n"
              "kVeyraTypeSatellite 1\n"
              "kVeyraTypeHybrid 2\n"
              "kVeyraUserLocationUnusableError 0\n"
              "kVeyraUserLocationDeniedError -1\n"
              "kVeyraAnnotationURIInvalid -1000");
    EXPECT_EQ(run("Object.getOwnPropertyNames(GeoMap).length"), "6");
}

TEST_F(GeoMap, HasTheNumbersOfTheNativeConstants) {
    static_assert(kVeyraTypeStandard == 0 && kVeyraTypeSatellite == 1 && kVeyraTypeHybrid == 2);
    static_assert(kVeyraUserLocationUnusableError == 0 && kVeyraUserLocationDeniedError == -1);
    static_assert(kVeyraAnnotationURIInvalid == -1000);
    makeMap();
    EXPECT_EQ(run("[GeoMap.kVeyraAnnotationURIInvalid, GeoMap.kVeyraUserLocationDeniedError].join()"), "-1000,-1");
}

TEST_F(GeoMap, IsAnObjectOfItsOwnClass) {
    makeMap();
    EXPECT_EQ(run("Object.prototype.toString.call(GeoMap)"), "[object GeoMap]");
}

TEST_F(GeoMap, ConstantsKeepTheirValuesWhenAScriptAssigns) {
    makeMap();
    EXPECT_EQ(run("GeoMap.kVeyraTypeHybrid = 7; GeoMap.kVeyraTypeHybrid"), "2");
    EXPECT_EQ(run("'use strict'; try { GeoMap.kVeyraTypeHybrid = 7 } catch (e) { e instanceof TypeError }"), "true");
    EXPECT_EQ(run("JSON.stringify(Object.getOwnPropertyDescriptor(GeoMap, 'kVeyraTypeHybrid'))"),
              R"({"value":2,"writable":false,"enumerable":true,"configurable":true})");
}

TEST_F(GeoMap, DeletingTheGlobalPropertyRemovesTheObject) {
    makeMap();
    EXPECT_EQ(run("JSON.stringify(Object.getOwnPropertyDescriptor(globalThis, 'GeoMap'), "
                  "['writable', 'enumerable', 'configurable'])"),
              R"({"writable":true,"enumerable":true,"configurable":true})");
    EXPECT_EQ(run("delete globalThis.GeoMap"), "true");
    EXPECT_EQ(run("typeof GeoMap"), "undefined");
}

TEST_F(GeoMap, ASecondViewFindsTheObjectAndChangesAndLogsNothing) {
    makeMap("map");
    run("first = GeoMap; GeoMap.mark = 1; delete GeoMap.kVeyraTypeHybrid");
    const CapturedLog log;
    makeMap("second");
    EXPECT_EQ(run("GeoMap === first && GeoMap.mark === 1 && !('kVeyraTypeHybrid' in GeoMap)"), "true");
    EXPECT_TRUE(log.lines().empty());
    EXPECT_EQ(run("second.mapType = 1; second.mapType + ' ' + map.mapType"), "1 0");
}

TEST_F(GeoMap, AnObjectOfThePageIsKeptAsItIs) {
    run("GeoMap = { own: 1 }");
    const CapturedLog log;
    makeMap();
    EXPECT_EQ(run("JSON.stringify(GeoMap)"), R"({"own":1})");
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(GeoMap, ANumberOfThePageIsReplaced) {
    run("GeoMap = 5");
    makeMap();
    EXPECT_EQ(run("GeoMap.kVeyraTypeSatellite"), "1");
}

TEST_F(GeoMap, AStringOfThePageIsReplaced) {
    run("GeoMap = 'text'");
    makeMap();
    EXPECT_EQ(run("GeoMap.kVeyraTypeSatellite"), "1");
}

TEST_F(GeoMap, AFailureAtTheStartIsLoggedAndTheStartGoesOn) {
    run("Object.defineProperty(globalThis, 'GeoMap', { get() { throw new Error('no map here') } })");
    const CapturedLog log;
    makeMap();
    EXPECT_EQ(log.lines(),
              (std::vector<std::string>{"message: -[VeyraView webPlugInInitialize] Unable to create the GeoMap class: "
                                        "Error Domain=NSURLErrorDomain Code=-1 UserInfo={exception=Error: no map here, "
                                        "message=Unable to get existing class object from global object.}"}));
    EXPECT_EQ(run("map.mapType"), "0");
    EXPECT_EQ(consoleErrors(), "");
}

TEST_F(GeoMap, CreationGivesTheClassAndItsObject) {
    EXPECT_TRUE(create("Fresh"));
    EXPECT_NE(classRef, nullptr);
    EXPECT_EQ(object("Fresh"), classObject);
    EXPECT_EQ(JSObjectGetPrivate(classObject), nullptr);
    EXPECT_EQ(error, nullptr);
    JSClassRelease(classRef);
}

TEST_F(GeoMap, CreationIsRefusedWithoutAnErrorWhereAnObjectIs) {
    run("Taken = function () {}");
    EXPECT_FALSE(create("Taken"));
    EXPECT_EQ(error, nullptr);
    EXPECT_NE(classRef, nullptr);
    ASSERT_NE(classObject, nullptr);
    EXPECT_NE(object("Taken"), classObject);
    EXPECT_EQ(run("typeof Taken"), "function");
    JSClassRelease(classRef);
}

TEST_F(GeoMap, CreationReportsAPropertyThatCannotBeRead) {
    run("Object.defineProperty(globalThis, 'Sealed', { get() { throw new TypeError('do not look') } })");
    EXPECT_FALSE(create("Sealed"));
    expectError("TypeError: do not look", "Unable to get existing class object from global object.");
    EXPECT_EQ(classRef, nullptr);
    EXPECT_EQ(classObject, nullptr);
}

TEST_F(GeoMap, CreationReportsAPropertyThatCannotBeWritten) {
    run("Object.defineProperty(globalThis, 'Fixed', { get() { return 5 }, set(v) { throw 'do not touch' } })");
    EXPECT_FALSE(create("Fixed"));
    expectError("do not touch", "Unable to insert class object into global object.");
    EXPECT_EQ(classRef, nullptr);
    EXPECT_EQ(classObject, nullptr);
}

TEST_F(GeoMap, CreationFailsWithoutAnErrorOutputToo) {
    run("Object.defineProperty(globalThis, 'Sealed', { get() { throw 1 } })");
    EXPECT_FALSE(JSClassCreateAndInsertObjectInContext("Sealed", &classRef, &classObject, global, nullptr));
    EXPECT_EQ(classRef, nullptr);
}

TEST_F(GeoMap, ConstantsAreReadOnlyAndComeInTheOrderOfInsertion) {
    JSObjectRef target = object("target = {}");
    EXPECT_TRUE(JSObjectRefInsertNumberConstant(target, "number", global, &error, 1.5));
    EXPECT_TRUE(JSObjectRefInsertStringConstant(target, "text", "ü€😀", global, &error));
    EXPECT_EQ(error, nullptr);
    EXPECT_EQ(run("target.number = 2; target.text = ''; JSON.stringify(target)"), R"({"number":1.5,"text":"ü€😀"})");
}

TEST_F(GeoMap, AConstantThatTheEngineDropsOnAFrozenObjectIsNoFailure) {
    JSObjectRef target = object("frozen = Object.freeze({})");
    EXPECT_TRUE(JSObjectRefInsertNumberConstant(target, "number", global, &error, 1));
    EXPECT_TRUE(JSObjectRefInsertStringConstant(target, "text", "value", global, &error));
    EXPECT_EQ(error, nullptr);
    EXPECT_EQ(run("Object.keys(frozen).length"), "0");
}

TEST_F(GeoMap, AnExceptionOfANumberConstantIsReported) {
    JSObjectRef target = object("new Proxy({}, { has() { throw new Error('hands off') } })");
    EXPECT_FALSE(JSObjectRefInsertNumberConstant(target, "number", global, &error, 1.5));
    expectError("Error: hands off", "Unable to set property named number with value 1.500000");
    EXPECT_FALSE(JSObjectRefInsertNumberConstant(target, "number", global, nullptr, 1.5));
}

TEST_F(GeoMap, AnExceptionOfAStringConstantIsReported) {
    JSObjectRef target = object("new Proxy({}, { has() { throw new Error('hands off') } })");
    EXPECT_FALSE(JSObjectRefInsertStringConstant(target, "text", "the value", global, &error));
    expectError("Error: hands off", "Unable to set property named text with value the value");
    EXPECT_FALSE(JSObjectRefInsertStringConstant(target, "text", "the value", global, nullptr));
}

TEST_F(GeoMap, ScriptStringsAreCopiedUnitForUnit) {
    const NSString text(u"a\xd800z");
    JSStringRef script = ScriptContext::makeString(text);
    EXPECT_EQ(NSStringFromJSStringRef(script), text);
    JSStringRelease(script);
}

TEST_F(GeoMap, ValuesConvertByTheEnginesOwnRules) {
    const auto text = [this](const char* script) { return NSStringFromJSValue(evaluate(script), global).utf8(); };
    EXPECT_EQ(text("1.50"), "1.5");
    EXPECT_EQ(text("[1, [2, 3]]"), "1,2,3");
    EXPECT_EQ(text("null"), "null");
    EXPECT_EQ(text("({ toString() { return 'mine' } })"), "mine");
}

TEST_F(GeoMap, AValueWhoseConversionThrowsHasNoText) {
    EXPECT_EQ(NSStringFromJSValue(evaluate("({ toString() { throw 1 } })"), global).utf8(), "");
    EXPECT_EQ(NSStringFromJSValue(evaluate("Symbol('s')"), global).utf8(), "");
}

} // namespace veyra
