// The functions that a bare script handed over to be called later: timers, and callbacks before the next frame. They
// are protected until they have been called or taken back. Script thread; the script host owns it, and its context
// outlives it.
#pragma once

#include "Platform/Foundation/DispatchQueue.h"

#include <JavaScriptCore/JavaScript.h>

#include <map>
#include <span>
#include <vector>

namespace veyra {

class ScriptCallbacks {
public:
    /// `call` runs a function with its arguments and deals with its exception; it may call `clear`.
    using Call = std::function<void(JSObjectRef function, std::span<const JSValueRef> arguments)>;
    /// Callbacks run on `queue`. `startTime` (seconds, monotonic) is the zero of frame times.
    ScriptCallbacks(JSContextRef context, DispatchQueue& queue, double startTime, Call call);
    ~ScriptCallbacks() { clear(); }
    ScriptCallbacks(const ScriptCallbacks&) = delete;
    ScriptCallbacks& operator=(const ScriptCallbacks&) = delete;

    /// Makes the globals setTimeout, clearTimeout, setInterval, clearInterval, requestAnimationFrame and
    /// cancelAnimationFrame.
    void installGlobals();
    /// True when nothing is waiting to be called.
    bool isEmpty() const { return _timers.empty() && _frameCallbacks.empty(); }
    /// Drops everything; from then on nothing is taken.
    void clear();

private:
    struct Function {
        JSObjectRef function = nullptr;
        std::vector<JSValueRef> arguments;
    };
    struct Timer {
        Function function;
        double due = 0;       // seconds, monotonic
        double interval = -1; // seconds; negative: once
    };

    Function keep(std::span<const JSValueRef> arguments, size_t firstArgument) const;
    void protect(const Function& function) const;
    void drop(const Function& function) const;
    JSValueRef addTimer(std::span<const JSValueRef> arguments, bool repeats, JSValueRef* exception);
    JSValueRef addFrameCallback(std::span<const JSValueRef> arguments, JSValueRef* exception);
    JSValueRef removeTimer(std::span<const JSValueRef> arguments);
    JSValueRef removeFrameCallback(std::span<const JSValueRef> arguments);
    std::map<unsigned, Timer>::iterator earliestTimer();
    void schedule();
    void runDueTimer();
    void runFrameCallbacks();
    bool isFunction(std::span<const JSValueRef> arguments) const;
    JSValueRef refuse(const char* name, JSValueRef* exception) const;

    JSContextRef const _context;
    DispatchQueue& _queue;
    const double _startTime;
    const Call _call;
    bool _isClosed = false;
    unsigned _lastIdentifier = 0;
    std::map<unsigned, Timer> _timers;            // by identifier
    std::map<unsigned, Function> _frameCallbacks; // by identifier
    DispatchTimer _nextTimer, _nextFrame;
};

} // namespace veyra
