#include "Hosts/Veyra/ScriptCallbacks.h"

#include "Hosts/Veyra/FrameClock.h"
#include "Hosts/Veyra/ScriptFunction.h"

#include <algorithm>

namespace veyra {

namespace {

constexpr double shortestDelay = 0.001; // seconds, as in browsers

double number(JSContextRef context, std::span<const JSValueRef> arguments, size_t index) {
    const double value = index < arguments.size() ? JSValueToNumber(context, arguments[index], nullptr) : 0;
    return std::isnan(value) ? 0 : value;
}

/// 0, which is no identifier, for what is none.
unsigned identifier(JSContextRef context, std::span<const JSValueRef> arguments) {
    const double value = number(context, arguments, 0);
    return value >= 1 && value <= 4294967295.0 ? static_cast<unsigned>(value) : 0;
}

} // namespace

ScriptCallbacks::ScriptCallbacks(JSContextRef context, DispatchQueue& queue, double startTime, Call call)
    : _context(context), _queue(queue), _startTime(startTime), _call(std::move(call)) {}

void ScriptCallbacks::installGlobals() {
    using Arguments = std::span<const JSValueRef>;
    const auto add = [this](const char* name, ScriptFunction body) {
        setScriptProperty(_context, JSContextGetGlobalObject(_context), name,
                          makeScriptFunction(_context, std::move(body)));
    };
    add("setTimeout", [this](Arguments a, JSValueRef* exception) { return addTimer(a, false, exception); });
    add("setInterval", [this](Arguments a, JSValueRef* exception) { return addTimer(a, true, exception); });
    add("clearTimeout", [this](Arguments a, JSValueRef*) { return removeTimer(a); });
    add("clearInterval", [this](Arguments a, JSValueRef*) { return removeTimer(a); });
    add("requestAnimationFrame", [this](Arguments a, JSValueRef* exception) { return addFrameCallback(a, exception); });
    add("cancelAnimationFrame", [this](Arguments a, JSValueRef*) { return removeFrameCallback(a); });
}

void ScriptCallbacks::clear() {
    _isClosed = true;
    _nextTimer.cancel();
    _nextFrame.cancel();
    for (const auto& [name, timer] : std::exchange(_timers, {}))
        drop(timer.function);
    for (const auto& [name, function] : std::exchange(_frameCallbacks, {}))
        drop(function);
}

ScriptCallbacks::Function ScriptCallbacks::keep(std::span<const JSValueRef> arguments, size_t firstArgument) const {
    Function kept;
    kept.function = JSValueToObject(_context, arguments[0], nullptr);
    const auto rest = arguments.subspan(firstArgument < arguments.size() ? firstArgument : arguments.size());
    kept.arguments.assign(rest.begin(), rest.end());
    protect(kept);
    return kept;
}

void ScriptCallbacks::protect(const Function& function) const {
    for (const JSValueRef argument : function.arguments)
        JSValueProtect(_context, argument);
    JSValueProtect(_context, function.function);
}

void ScriptCallbacks::drop(const Function& function) const {
    for (const JSValueRef argument : function.arguments)
        JSValueUnprotect(_context, argument);
    JSValueUnprotect(_context, function.function);
}

bool ScriptCallbacks::isFunction(std::span<const JSValueRef> arguments) const {
    return !arguments.empty() && JSValueIsObject(_context, arguments[0]) &&
           JSObjectIsFunction(_context, JSValueToObject(_context, arguments[0], nullptr));
}

JSValueRef ScriptCallbacks::refuse(const char* name, JSValueRef* exception) const {
    *exception = makeTypeError(_context, std::string("The first argument of ") + name + " is no function");
    return nullptr;
}

JSValueRef ScriptCallbacks::addTimer(std::span<const JSValueRef> arguments, bool repeats, JSValueRef* exception) {
    if (!isFunction(arguments))
        return refuse(repeats ? "setInterval" : "setTimeout", exception);
    const double delay = std::max(number(_context, arguments, 1) / 1000, shortestDelay);
    const unsigned name = ++_lastIdentifier;
    if (!_isClosed) {
        _timers.emplace(name, Timer{keep(arguments, 2), monotonicSeconds() + delay, repeats ? delay : -1});
        schedule();
    }
    return JSValueMakeNumber(_context, name);
}

JSValueRef ScriptCallbacks::addFrameCallback(std::span<const JSValueRef> arguments, JSValueRef* exception) {
    if (!isFunction(arguments))
        return refuse("requestAnimationFrame", exception);
    const unsigned name = ++_lastIdentifier;
    if (!_isClosed) {
        _frameCallbacks.emplace(name, keep(arguments, arguments.size()));
        if (!_nextFrame.isRunning())
            _nextFrame.start(_queue, secondsToNextFrame(_startTime, monotonicSeconds()),
                             [this] { runFrameCallbacks(); });
    }
    return JSValueMakeNumber(_context, name);
}

JSValueRef ScriptCallbacks::removeTimer(std::span<const JSValueRef> arguments) {
    if (const auto found = _timers.find(identifier(_context, arguments)); found != _timers.end()) {
        drop(found->second.function);
        _timers.erase(found);
        schedule();
    }
    return nullptr;
}

JSValueRef ScriptCallbacks::removeFrameCallback(std::span<const JSValueRef> arguments) {
    if (const auto found = _frameCallbacks.find(identifier(_context, arguments)); found != _frameCallbacks.end()) {
        drop(found->second);
        _frameCallbacks.erase(found);
    }
    return nullptr;
}

std::map<unsigned, ScriptCallbacks::Timer>::iterator ScriptCallbacks::earliestTimer() {
    return std::min_element(_timers.begin(), _timers.end(),
                            [](const auto& a, const auto& b) { return a.second.due < b.second.due; });
}

// One timer of the queue for the earliest of the script's, so that they run in the order in which they are due.
void ScriptCallbacks::schedule() {
    if (_timers.empty())
        _nextTimer.cancel();
    else
        _nextTimer.start(_queue, earliestTimer()->second.due - monotonicSeconds(), [this] { runDueTimer(); });
}

void ScriptCallbacks::runDueTimer() {
    const auto earliest = earliestTimer();
    const Timer timer = earliest->second;
    if (timer.interval < 0) {
        _timers.erase(earliest);
    } else {
        earliest->second.due = std::max(timer.due + timer.interval, monotonicSeconds());
        protect(timer.function); // the call may clear the timer, and with it the protection
    }
    schedule();
    _call(timer.function.function, timer.function.arguments);
    drop(timer.function);
}

// What the callbacks ask for is for the next frame; what they take back is not called.
void ScriptCallbacks::runFrameCallbacks() {
    const double milliseconds = (monotonicSeconds() - _startTime) * 1000;
    const unsigned last = _lastIdentifier;
    while (!_frameCallbacks.empty() && _frameCallbacks.begin()->first <= last) {
        const Function function = _frameCallbacks.begin()->second;
        _frameCallbacks.erase(_frameCallbacks.begin());
        const JSValueRef time = JSValueMakeNumber(_context, milliseconds);
        _call(function.function, {&time, 1});
        drop(function);
    }
}

} // namespace veyra
