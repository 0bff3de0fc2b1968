#include "Tests/Platform/WebKit/BridgeFixture.h"

#include <cmath>

namespace veyra {

using Conversion = Bridge;

TEST_F(Conversion, NumbersAndBooleansArriveAsNumberObjects) {
    run("probe.echo(1.5); probe.echo(true); probe.echo(NaN); probe.echo(-0)");
    EXPECT_FALSE(probe->received[0].isBoolean());
    EXPECT_EQ(probe->received[0].doubleValue(), 1.5);
    EXPECT_TRUE(probe->received[1].isBoolean());
    EXPECT_TRUE(probe->received[1].boolValue());
    EXPECT_TRUE(std::isnan(probe->received[2].doubleValue()));
    EXPECT_TRUE(std::signbit(probe->received[3].doubleValue()));
}

TEST_F(Conversion, NullIsNilAndUndefinedAndAMissingArgumentAreUndefined) {
    run("probe.echo(null); probe.echo(undefined); probe.echo()");
    EXPECT_TRUE(probe->received[0].isNil());
    EXPECT_TRUE(probe->received[1].isUndefined());
    EXPECT_TRUE(probe->received[2].isUndefined());
}

TEST_F(Conversion, SymbolsAndBigIntegersArriveAsUndefined) {
    run("probe.echo(Symbol('s')); probe.echo(10n)");
    EXPECT_TRUE(probe->received[0].isUndefined());
    EXPECT_TRUE(probe->received[1].isUndefined());
}

TEST_F(Conversion, StringsComeBackUnitForUnit) {
    EXPECT_EQ(run("['', 'a', 'ü€😀', '\\ud800', 'x\\udc00y', 'nul\\0nul'].every(s => probe.echo(s) === s)"), "true");
}

TEST_F(Conversion, ObjectsArraysAndFunctionsArriveAsScriptObjects) {
    run("probe.echo({}); probe.echo([1]); probe.echo(() => 1)");
    for (const id& value : probe->received)
        EXPECT_NE(value.as<WebScriptObject>(), nullptr);
}

TEST_F(Conversion, TheSameScriptObjectIsTheSameObjectAndComesBackAsItself) {
    EXPECT_EQ(run("o = {}; probe.echo(o) === o && probe.echo(o) === o"), "true");
    EXPECT_EQ(probe->received[0].object(), probe->received[1].object());
}

TEST_F(Conversion, ScriptObjectsKeepTheirIdentityAcrossCollections) {
    run("probe.value = { name: 'kept' }; for (let i = 0; i < 1000; ++i) probe.echo({ i })");
    probe->received.clear();
    collect();
    EXPECT_EQ(run("probe.value.name"), "kept");
    EXPECT_EQ(run("probe.value === probe.value"), "true");
}

TEST_F(Conversion, NilIsNullFromAPropertyAndUndefinedFromAMethod) {
    EXPECT_EQ(run("String(probe.value)"), "null");
    EXPECT_EQ(run("String(probe.echo(null))"), "undefined");
    EXPECT_EQ(run("String(probe.nothing())"), "undefined");
}

TEST_F(Conversion, ArraysBecomeNewOrdinaryArrays) {
    probe->setValue(id(NSArray{id(1), id("two"), id(NSArray{}), id()}));
    EXPECT_EQ(run("Array.isArray(probe.value)"), "true");
    EXPECT_EQ(run("JSON.stringify(probe.value)"), R"([1,"two",[],null])");
    EXPECT_EQ(run("probe.value === probe.value"), "false");
}

TEST_F(Conversion, BooleanParametersTakeTheScriptsTruthiness) {
    run("probe.join('a', 1); probe.join('b', ''); probe.join('c', {}); probe.join('d'); probe.flag = 'yes'");
    EXPECT_TRUE(probe->received[1].boolValue());
    EXPECT_FALSE(probe->received[3].boolValue());
    EXPECT_TRUE(probe->received[5].boolValue());
    EXPECT_FALSE(probe->received[7].boolValue());
    EXPECT_TRUE(probe->received[7].isBoolean());
    EXPECT_EQ(run("probe.flag"), "true");
    EXPECT_EQ(run("probe.flag = null; probe.flag"), "false");
}

TEST_F(Conversion, ExtraArgumentsAreIgnored) {
    run("probe.echo('one', 'two', 'three')");
    ASSERT_EQ(probe->received.size(), 1u);
    EXPECT_EQ(probe->received[0].string()->utf8(), "one");
}

} // namespace veyra
