#include "Tests/Platform/WebKit/BridgeFixture.h"

#include <thread>

namespace veyra {

using ScriptObject = Bridge;

TEST_F(ScriptObject, ReadsKeysConverted) {
    const auto o = object("({ n: 1, s: 'text', o: {}, z: null })");
    EXPECT_EQ(o->valueForKey("n").doubleValue(), 1);
    EXPECT_EQ(o->valueForKey("s").string()->utf8(), "text");
    EXPECT_NE(o->valueForKey("o").as<WebScriptObject>(), nullptr);
    EXPECT_TRUE(o->valueForKey("z").isNil());
}

TEST_F(ScriptObject, AnAbsentKeyRaisesUntilTheMethodIsReplaced) {
    const auto o = object("({})");
    const Class cls = WebScriptObject::classObject();
    EXPECT_EQ(NSClassFromString("WebScriptObject"), cls);
    EXPECT_THROW(o->valueForKey("absent"), NSException);
    class_replaceMethod(
        cls, "valueForUndefinedKey:", [](NSObject&, std::span<const id>) { return id(); }, "@@:@");
    EXPECT_TRUE(o->valueForKey("absent").isNil());
    EXPECT_TRUE(object("({ absent: undefined })")->valueForKey("absent").isNil());
}

TEST_F(ScriptObject, AGetterThatThrowsIsReportedAndReadsAsUndefined) {
    class_replaceMethod(
        WebScriptObject::classObject(), "valueForUndefinedKey:", [](NSObject&, std::span<const id>) { return id(); },
        "@@:@");
    EXPECT_TRUE(object("({ get x() { throw new Error('no x') } })")->valueForKey("x").isNil());
    EXPECT_EQ(run("errors.join()"), "Error: no x");
}

TEST_F(ScriptObject, ReadsElements) {
    const auto array = object("[5, undefined, 'x']");
    EXPECT_EQ(array->webScriptValueAtIndex(0).doubleValue(), 5);
    EXPECT_TRUE(array->webScriptValueAtIndex(1).isUndefined());
    EXPECT_EQ(array->webScriptValueAtIndex(2).string()->utf8(), "x");
    EXPECT_TRUE(array->webScriptValueAtIndex(3).isUndefined());
}

TEST_F(ScriptObject, CallsMethodsWithThisAndArguments) {
    const auto o = object("({ f(...a) { return [this === listener, ...a].join() } })");
    JSStringRef name = JSStringCreateWithUTF8CString("listener");
    JSObjectSetProperty(global, JSContextGetGlobalObject(global), name, o->scriptObject(), 0, nullptr);
    JSStringRelease(name);
    EXPECT_EQ(o->callWebScriptMethod("f", {id(1), id("two"), id(true)}).string()->utf8(), "true,1,two,true");
}

TEST_F(ScriptObject, CallingWhatIsNotCallableDoesNothing) {
    const auto o = object("({ a: 1, b: {}, c: null })");
    for (const char* name : {"a", "b", "c", "absent"})
        EXPECT_TRUE(o->callWebScriptMethod(name, {}).isNil());
    EXPECT_EQ(run("errors.length"), "0");
}

TEST_F(ScriptObject, AnExceptionInACallGoesToTheConsole) {
    object("({ f() { throw new TypeError('in f') } })")->callWebScriptMethod("f", {});
    EXPECT_EQ(run("errors.join()"), "TypeError: in f");
}

TEST_F(ScriptObject, AMethodsNilResultIsNil) {
    EXPECT_TRUE(object("({ f() {} })")->callWebScriptMethod("f", {}).isNil());
}

TEST_F(ScriptObject, IsDeadAfterItsPage) {
    const auto o = object("({ n: 1, f() { calls = 1 } })");
    context->invalidate();
    EXPECT_TRUE(o->valueForKey("n").isNil());
    EXPECT_TRUE(o->webScriptValueAtIndex(0).isNil());
    EXPECT_TRUE(o->callWebScriptMethod("f", {}).isNil());
    EXPECT_EQ(run("typeof calls"), "undefined");
}

TEST_F(ScriptObject, ASuspendedPageIsNeitherReadNorCalled) {
    const auto o = object("({ n: 1, f() { calls = 1 } })");
    context->setSuspended(true);
    EXPECT_TRUE(o->valueForKey("n").isNil());
    EXPECT_TRUE(o->callWebScriptMethod("f", {}).isNil());
    EXPECT_EQ(run("typeof calls"), "undefined");
    context->setSuspended(false);
    EXPECT_EQ(o->valueForKey("n").doubleValue(), 1);
}

TEST_F(ScriptObject, TheLastReferenceMayGoOnAnyThread) {
    auto o = object("globalThis.weak = new WeakRef({ big: 1 }); weak.deref()");
    collect();
    EXPECT_EQ(run("typeof weak.deref()"), "object");
    std::thread([&] { o = nullptr; }).join();
    collect();
    evaluate("0");
    collect();
    EXPECT_EQ(run("typeof weak.deref()"), "undefined");
}

TEST_F(ScriptObject, ArgumentsThatNobodyKeepsAreCollected) {
    run("refs = []; for (let i = 0; i < 1000; ++i) { const o = { i }; refs.push(new WeakRef(o)); probe.echo(o); }");
    probe->received.clear();
    collect();
    collect();
    const std::string alive = run("refs.filter(r => r.deref()).length");
    EXPECT_LT(std::stoi(alive), 50); // the collector scans its stack conservatively
}

TEST_F(ScriptObject, EventsRunOnTheWebThreadInOrder) {
    run("order = []");
    const auto o = object("({ f(n) { order.push(n) } })");
    std::thread([&] {
        for (int i = 0; i < 5; ++i)
            WebThreadRun([o, i] { o->callWebScriptMethod("f", {id(i)}); });
    }).join();
    EXPECT_EQ(run("order.length"), "0");
    drain();
    WebThreadRun([o] { o->callWebScriptMethod("f", {id(5)}); });
    EXPECT_EQ(run("order.join()"), "0,1,2,3,4,5");
}

} // namespace veyra
