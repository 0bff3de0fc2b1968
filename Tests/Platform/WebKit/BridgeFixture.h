// A bare script context with one exposed native object, "probe", for tests of the bridge.
#pragma once

#include "Platform/Foundation/MethodBinding.h"
#include "Platform/Foundation/NSException.h"
#include "Platform/WebKit/WebScriptExposure.h"
#include "Platform/WebKit/WebScriptObject.h"
#include "Platform/WebKit/WebThread.h"

#include <gtest/gtest.h>

// Exported by the engine for debugging; the public call only asks for a collection.
extern "C" void JSSynchronousGarbageCollectForDebugging(JSContextRef);

namespace veyra {

/// A value object with two attributes.
class Pair final : public NSObject {
public:
    VEYRA_CLASS()
    Pair() { ++live; }
    ~Pair() override { --live; }
    static bool nothingExcluded(const char*) { return false; }
    std::vector<NSString> attributeKeys() const override { return {"first", "second"}; }
    NSString description() const override { return "a pair"; }
    double first() const { return _first; }
    void setFirst(double first) { _first = first; }
    double second() const { return _second; }
    void setSecond(double second) { _second = second; }
    static inline std::atomic<int> live{0};

private:
    double _first = 0, _second = 0;
};

/// An object with what a plug-in view has: keys, methods, and members that scripts may not see.
class Probe final : public SelfSharingObject {
public:
    VEYRA_CLASS()
    id value() const { return _value; }
    void setValue(const id& value) { _value = value; }
    bool flag() const { return _flag; }
    void setFlag(bool flag) { _flag = flag; }
    id echo(const id& value) {
        received.push_back(value);
        return value;
    }
    void nothing() {}
    id join(const id& text, bool flag) {
        received.push_back(text);
        received.push_back(id(flag));
        return id();
    }
    id freshPair() { return id(std::make_shared<Pair>()); }
    id samePair() { return id(pair); }
    void raise(const id& reason) { throw NSException(NSInvalidArgumentException, *reason.string()); }
    void outOfMemory() { throw std::bad_alloc(); }
    id throwTwice() {
        WebScriptObject::throwException("first message");
        WebScriptObject::throwException("second message");
        return id(7);
    }
    id call(const id& function) {
        received.push_back(function.as<WebScriptObject>()->callWebScriptMethod("run", {id(1), id("two")}));
        return id();
    }
    void secret() {}

    std::vector<id> received;
    std::shared_ptr<Pair> pair = std::make_shared<Pair>();

private:
    id _value;
    bool _flag = false;
};

class Bridge : public testing::Test {
protected:
    Bridge();
    ~Bridge() override;

    /// The text of the script's result, or "threw: " and the exception's.
    std::string run(const std::string& script);
    JSValueRef evaluate(const std::string& script, JSValueRef* exception = nullptr);
    /// Runs the web thread's queued blocks, collects, and runs them again.
    void collect();
    void drain();
    std::shared_ptr<WebScriptObject> object(const std::string& script) {
        return context->toNative(evaluate(script)).as<WebScriptObject>();
    }

    JSGlobalContextRef global;
    std::shared_ptr<ScriptContext> context;
    std::shared_ptr<Probe> probe;
};

} // namespace veyra
