// A script's world: a bare context of the script engine with the globals `map`, `GeoMap`, `console`, `close` and those
// for timers and animation frames. It ends when the script calls `close()`, when an exception is not caught, or when
// nothing is left to do: no timer and no frame callback waits, the map is idle, and nothing is on its way between the
// two queues.
//
// Web thread, but for `window`, which belongs to the main queue. The script command owns it.
#pragma once

#include "Hosts/Common/PlugInInstance.h"
#include "Hosts/Veyra/CommandLine.h"
#include "Hosts/Veyra/PlayedLocation.h"
#include "Hosts/Veyra/ScriptCallbacks.h"
#include "Hosts/Veyra/ScriptUIDelegate.h"
#include "Hosts/Veyra/ScriptWindow.h"

namespace veyra {

class ScriptPage {
public:
    /// `ended` is called once, on the web thread; from then on nothing of the script runs.
    using Ended = std::function<void(const Outcome&)>;
    ScriptPage(const CommandLine& line, Ended ended);
    /// Stops the map and frees the context. After the end.
    ~ScriptPage();
    ScriptPage(const ScriptPage&) = delete;
    ScriptPage& operator=(const ScriptPage&) = delete;

    /// Makes the map and runs the script.
    void run(const std::string& source);
    /// Null when there is no map. Main queue.
    const std::shared_ptr<ScriptWindow>& window() const { return _window; }

private:
    static SelfSharingObject* resolve(JSContextRef, JSObjectRef object);
    bool makeMap();
    void installGlobals();
    void reportRejections();
    void evaluate(const std::string& source);
    void call(JSObjectRef function, std::span<const JSValueRef> arguments);
    void close();
    void fail(JSValueRef exception);
    void end(const Outcome& outcome);
    void endWhenNothingIsLeft();
    bool mayEnd() const { return _isClosed || _callbacks->isEmpty(); }

    const CommandLine _line;
    const Ended _ended;
    const double _startTime;
    JSGlobalContextRef const _global;
    std::shared_ptr<ScriptContext> _context;
    std::unique_ptr<ScriptCallbacks> _callbacks;
    std::shared_ptr<ScriptUIDelegate> _uiDelegate;
    std::shared_ptr<PlayedLocation> _location; // main queue
    std::shared_ptr<PlugInInstance> _map;
    std::shared_ptr<ScriptWindow> _window;
    JSObjectRef _mapObject = nullptr; // protected
    bool _isClosed = false;
    bool _isAsking = false; // whether anything is left to do
    bool _hasEnded = false;
};

} // namespace veyra
