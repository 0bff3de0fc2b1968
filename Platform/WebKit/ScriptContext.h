// One page's or frame's script context as the bridge sees it: converts values both ways, keeps the script values that
// native code holds, and dies with the page. Web thread only, except the destructor and where said.
//
// All script values that native code holds live in one holder object of the context. A host whose context has an object
// that lives exactly as long as the page (and that the page cannot reach) gives it as the keeper: then nothing is
// protected and a page that leaves the back/forward cache is collected. Without a keeper the holder is protected until
// `invalidate`.
#pragma once

#include "Platform/Foundation/NSObject.h"
#include "Platform/WebKit/ScriptHelpers.h"

#include <JavaScriptCore/JavaScript.h>

#include <functional>
#include <mutex>
#include <unordered_map>

namespace veyra {

class WebScriptObject;
class ScriptContext : public std::enable_shared_from_this<ScriptContext> {
public:
    /// The context of `globalContext`, made at the first call. `keeper` (of the same engine group) may be null; it is
    /// used at the first call only. The context is not retained.
    static std::shared_ptr<ScriptContext> of(JSGlobalContextRef globalContext, JSObjectRef keeper = nullptr);
    /// The context that was made for the global context of `context`, or null.
    static std::shared_ptr<ScriptContext> existing(JSContextRef context);
    /// The same without holding it: for calls that run no script.
    static ScriptContext* find(JSContextRef context);
    ~ScriptContext();

    /// Null once the context is dead.
    JSGlobalContextRef globalContext() const { return _alive ? _context : nullptr; }
    bool isAlive() const { return _alive; }
    /// The page has gone: every script object of it is dead from now on. `onDeath` handlers run. The engine is called
    /// only when the context is known to exist, that is when the holder was protected.
    void invalidate();
    /// A page that is hidden in the back/forward cache may be collected without a word: while it is suspended nothing
    /// of it is read or called, and events to it are lost.
    void setSuspended(bool suspended);
    bool isSuspended() const { return _suspended; }
    /// `handler` runs on the web thread when the context dies.
    void onDeath(std::function<void()> handler);

    /// Script to native: number, boolean, string; null is nil; undefined, symbols and big integers are WebUndefined;
    /// one of our value objects is that very object; any other object is its WebScriptObject.
    id toNative(JSValueRef value);
    /// As `toNative` for the arguments of a call from a script, which the caller's stack keeps alive until the call
    /// returns: what the callee does not keep costs no slot.
    id argumentToNative(JSValueRef value);
    /// Native to script: nil is null. Undefined when the context is dead.
    JSValueRef toScript(const id& value);
    static NSString toString(JSStringRef string);
    static JSStringRef makeString(const NSString& string);
    /// The name of a property or method as the engine wants it; kept for good, so only for names that native code uses.
    static JSStringRef keyString(const NSString& key);

    /// Calls `visit` with an element that the caller's stack keeps alive meanwhile; what has been read of it ahead is
    /// what its keys answer. Afterwards it is kept only if native code holds it.
    void visitElement(JSValueRef element, ScriptValuesAhead& ahead, const std::function<void(const id&)>& visit);

    /// Writes an exception to the page's console as an error.
    void reportException(JSValueRef exception);
    /// An object without a prototype: setting a property of it never runs what a page has put on Object.prototype.
    static JSObjectRef makeBareObject(JSContextRef script);
    /// An Error of the script's page with that message.
    static JSValueRef makeError(JSContextRef script, const NSString& message);

    /// Keeps a script value as long as the slot is held. Slots are given back on any thread with `releaseSlot`.
    unsigned keep(JSObjectRef object);
    /// Any thread: hands the slot back; the engine is told later, on the web thread.
    void releaseSlot(unsigned slot);
    /// `Object.defineProperty` as the page found it.
    JSObjectRef definePropertyFunction() const { return _defineProperty; }
    /// Makes the value objects of a class. The context is alive.
    const ScriptHelpers::Maker& makerOf(Class cls);
    /// Shortcuts through compiled script. The context is alive.
    ScriptHelpers& helpers() { return _helpers; }
    /// The function that a source text (a constant of the program) stands for, compiled in the page at the first call
    /// and kept; null when the page cannot compile it. It sees nothing of the page but what it is called with.
    JSObjectRef helperFunction(const char* source);
    /// A native object of whatever context has left its script object.
    static void noteDeparture();
    /// Live contexts of the process, for tests.
    static size_t liveContexts();

private:
    friend class WebScriptObject;
    friend class ScriptCall;
    struct Wrapper {
        std::shared_ptr<NSObject> object;
        JSObjectRef script;
        unsigned slot;
    };

    ScriptContext(JSGlobalContextRef context, JSObjectRef keeper);
    static void holderFinalized(JSObjectRef holder);
    bool isUsable() const { return _alive && !_suspended; }
    std::shared_ptr<WebScriptObject> scriptObject(JSObjectRef object, bool isArgument);
    std::shared_ptr<NSObject> unwrap(JSObjectRef object);
    JSValueRef wrap(const std::shared_ptr<NSObject>& object);
    JSObjectRef makeArray(const NSArray& elements);
    struct ValueClass;
    /// Defines a property that is not enumerable.
    void defineHidden(JSObjectRef object, JSValueRef key, JSValueRef value);
    const ValueClass& valueClassOf(Class cls, const NSObject& object);
    void refresh(NSObject& object, JSObjectRef script, const ValueClass& cls);
    bool hasToSettle(size_t firstArgument, size_t firstWrapper) const {
        return _arguments.size() > firstArgument || _recentWrappers.size() > firstWrapper || !_keptWrappers.empty();
    }
    void settle(size_t firstArgument, size_t firstWrapper);
    void reclaimSlots();

    JSGlobalContextRef const _context;
    uint64_t _serial = 0; // tells contexts apart that lived at one address
    bool _alive = true;
    bool _suspended = false;
    int _callDepth = 0; // calls from and into scripts that are running
    bool _holderProtected = false;
    JSObjectRef _holder = nullptr;         // lives in the keeper, or protected
    JSObjectRef _slots = nullptr;          // kept values by number, in the holder
    JSObjectRef _defineProperty = nullptr; // kept
    JSObjectRef _console = nullptr;        // kept; may be null
    JSObjectRef _consoleError = nullptr;   // kept; may be null
    JSValueRef _toStringTag = nullptr;     // the symbol, which lives as long as the engine; may be null
    std::vector<std::shared_ptr<const ValueClass>> _valueClasses;
    ScriptHelpers _helpers{*this};
    std::unordered_map<const char*, JSObjectRef> _helperFunctions; // by source; kept
    unsigned _nextSlot = 0;
    std::vector<unsigned> _freeSlots;

    std::unordered_map<JSObjectRef, std::weak_ptr<WebScriptObject>> _objects; // kept script objects by identity
    std::vector<std::shared_ptr<WebScriptObject>> _arguments;                 // of the calls that are running
    std::vector<Wrapper> _recentWrappers;                                     // value objects of the running calls
    std::vector<Wrapper> _keptWrappers; // value objects that native code holds on to, each in a slot
    std::vector<std::function<void()>> _deathHandlers;

    std::mutex _releasedMutex;
    std::vector<unsigned> _released; // guarded by _releasedMutex
    bool _reclaimQueued = false;     // guarded by _releasedMutex
};

} // namespace veyra
