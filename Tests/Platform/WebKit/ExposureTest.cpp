#include "Tests/Platform/WebKit/BridgeFixture.h"

namespace veyra {

using Exposure = Bridge;

TEST_F(Exposure, OnlyWhatTheClassShowsIsThere) {
    EXPECT_EQ(run("Object.getOwnPropertyNames(probe).sort().join()"),
              "call,echo,flag,freshPair,join,nothing,outOfMemory,raise,samePair,throwTwice,value");
    EXPECT_EQ(run("typeof probe.secret"), "undefined");
    EXPECT_EQ(run("probe.secret()"),
              "threw: TypeError: probe.secret is not a function. (In 'probe.secret()', 'probe.secret' is undefined)");
}

TEST_F(Exposure, NamesAreNotEnumerable) {
    EXPECT_EQ(run("Object.keys(probe).length"), "0");
}

TEST_F(Exposure, MethodsCalledOnSomethingElseThrowATypeError) {
    EXPECT_EQ(run("probe.echo.call({}, 1)"), "threw: TypeError: The method was called on an object that is no map");
    EXPECT_TRUE(probe->received.empty());
}

TEST_F(Exposure, ReadsOnSomethingElseAreUndefinedAndWritesMakeAnOwnProperty) {
    EXPECT_EQ(run("other = Object.create(probe); String(other.value)"), "undefined");
    EXPECT_EQ(run("other.value = 5; other.value + ' ' + Object.keys(other) + ' ' + probe.value"), "5 value null");
}

TEST_F(Exposure, APendingMessageIsThrownWhenTheCallReturnsAndTheLastWins) {
    EXPECT_EQ(run("probe.throwTwice()"), "threw: Error: second message");
    EXPECT_EQ(run("try { probe.throwTwice() } catch (e) { e instanceof Error && e.message }"), "second message");
    EXPECT_EQ(run("probe.echo(1)"), "1");
}

TEST_F(Exposure, ANativeExceptionBecomesAnErrorWithItsReason) {
    EXPECT_EQ(run("probe.raise('the reason')"), "threw: Error: the reason");
}

TEST_F(Exposure, AnAllocationThatCannotBeHadBecomesAnError) {
    EXPECT_EQ(run("probe.outOfMemory()"), "threw: Error: Out of memory");
}

TEST_F(Exposure, CallsNestWithTheirOwnExceptions) {
    EXPECT_EQ(run("probe.call({ run() { try { probe.throwTwice() } catch (e) { return e.message } } }); 'went on'"),
              "went on");
    EXPECT_EQ(probe->received[0].string()->utf8(), "second message");
}

TEST_F(Exposure, MembersOfADeadPageThrowAReferenceError) {
    context->invalidate();
    EXPECT_EQ(run("probe.value"), "threw: ReferenceError: The page of this map has gone");
    EXPECT_EQ(run("probe.value = 1"), "threw: ReferenceError: The page of this map has gone");
    EXPECT_EQ(run("probe.echo(1)"), "threw: ReferenceError: The page of this map has gone");
}

TEST_F(Exposure, ThePageMayDieInTheMiddleOfACall) {
    // The argument's getter ends the page, as a navigation would.
    probe->setValue(id());
    const auto script = object("({ get gone() { return 1 } })");
    JSStringRef name = JSStringCreateWithUTF8CString("endPage");
    static std::shared_ptr<ScriptContext> ending;
    ending = context;
    JSObjectRef function = JSObjectMakeFunctionWithCallback(
        global, name, [](JSContextRef c, JSObjectRef, JSObjectRef, size_t, const JSValueRef[], JSValueRef*) {
            ending->invalidate();
            return JSValueMakeUndefined(c);
        });
    JSObjectSetProperty(global, JSContextGetGlobalObject(global), name, function, kJSPropertyAttributeNone, nullptr);
    JSStringRelease(name);
    EXPECT_EQ(run("String(probe.call({ get run() { endPage(); return () => 1 } }))"), "undefined");
    ending = nullptr;
    EXPECT_TRUE(script->valueForKey("gone").isNil());
}

} // namespace veyra
