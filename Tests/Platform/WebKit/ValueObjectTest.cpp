#include "Tests/Platform/WebKit/BridgeFixture.h"

namespace veyra {

using ValueObject = Bridge;

TEST_F(ValueObject, AttributesAreOwnEnumerableReadableAndWritable) {
    EXPECT_EQ(run("p = probe.freshPair(); JSON.stringify(p)"), R"({"first":0,"second":0})");
    EXPECT_EQ(run("p.first = 3; Object.keys(p).join() + ' ' + p.first"), "first,second 3");
    EXPECT_EQ(run("JSON.stringify({ ...p })"), R"({"first":3,"second":0})");
    EXPECT_EQ(run("names = []; for (const k in p) names.push(k); names.join()"), "first,second");
    EXPECT_EQ(run("JSON.stringify(Object.getOwnPropertyDescriptor(p, 'first'))"),
              R"({"value":3,"writable":true,"enumerable":true,"configurable":true})");
}

TEST_F(ValueObject, TextIsTheNativeDescription) {
    EXPECT_EQ(run("String(probe.freshPair())"), "a pair");
}

TEST_F(ValueObject, ToStringOfSomethingElseThrows) {
    EXPECT_EQ(run("probe.freshPair().toString.call({})"),
              "threw: Error: toString was called on an object that is no map value");
}

TEST_F(ValueObject, ComesBackAsThatVeryObjectWithWhatScriptsWrote) {
    run("p = probe.freshPair(); p.first = 5; p.second = '2.5'; probe.echo(p); probe.echo(p)");
    const auto pair = probe->received[0].as<Pair>();
    ASSERT_NE(pair, nullptr);
    EXPECT_EQ(pair, probe->received[1].as<Pair>());
    EXPECT_EQ(pair->first(), 5);
    EXPECT_EQ(pair->second(), 2.5);
}

TEST_F(ValueObject, AnAttributeWithoutANumberCountsAsZero) {
    run("p = probe.freshPair(); p.first = {}; delete p.second; probe.echo(p)");
    EXPECT_EQ(probe->received[0].as<Pair>()->first(), 0);
    EXPECT_EQ(probe->received[0].as<Pair>()->second(), 0);
}

TEST_F(ValueObject, KeepsItsIdentityWhileNativeCodeHoldsIt) {
    EXPECT_EQ(run("p = probe.freshPair(); probe.value = p; probe.value === p"), "true");
    run("p.mark = 'same'; p = null");
    collect();
    EXPECT_EQ(run("probe.value.mark"), "same");
}

TEST_F(ValueObject, TheSameNativeObjectIsTheSameScriptObject) {
    EXPECT_EQ(run("probe.samePair() === probe.samePair()"), "true");
}

TEST_F(ValueObject, IsFreedWhenNobodyHoldsIt) {
    probe->pair = nullptr;
    run("for (let i = 0; i < 5000; ++i) { const p = probe.freshPair(); probe.value = p; } probe.value = null");
    run("0");
    collect();
    collect();
    EXPECT_LT(Pair::live, 50); // the collector scans its stack conservatively
}

} // namespace veyra
