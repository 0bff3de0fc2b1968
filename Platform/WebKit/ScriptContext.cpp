#include "Platform/WebKit/ScriptContext.h"

#include "Platform/WebKit/WebScriptObject.h"
#include "Platform/WebKit/WebThread.h"

#include <algorithm>
#include <utility>

namespace veyra {

namespace {

using Registry = std::unordered_map<JSGlobalContextRef, std::shared_ptr<ScriptContext>>;

// The contexts of the process by their global context; web thread only.
Registry& registry() {
    static Registry* contexts = new Registry;
    return *contexts;
}

// The last look-up: calls come in runs from one page, and the engine takes its lock to tell a global context. Null when
// the context has died.
JSContextRef lastScript = nullptr;
ScriptContext* lastFound = nullptr;

JSObjectRef objectProperty(JSContextRef context, JSObjectRef object, const char* name) {
    JSStringRef key = JSStringCreateWithUTF8CString(name);
    JSValueRef value = JSObjectGetProperty(context, object, key, nullptr);
    JSStringRelease(key);
    return value && JSValueIsObject(context, value) ? JSValueToObject(context, value, nullptr) : nullptr;
}

/// What a holder knows of its context: the collector asks after that may be gone.
struct HolderData {
    JSGlobalContextRef context;
    uint64_t serial;
};

void setHiddenProperty(JSContextRef context, JSObjectRef object, const char* name, JSObjectRef value) {
    JSStringRef key = JSStringCreateWithUTF8CString(name);
    JSObjectSetProperty(context, object, key, value, kJSPropertyAttributeDontEnum, nullptr);
    JSStringRelease(key);
}

} // namespace

std::shared_ptr<ScriptContext> ScriptContext::of(JSGlobalContextRef globalContext, JSObjectRef keeper) {
    auto& context = registry()[globalContext];
    if (!context)
        context = std::shared_ptr<ScriptContext>(new ScriptContext(globalContext, keeper));
    return context;
}

ScriptContext* ScriptContext::find(JSContextRef context) {
    if (lastFound && lastScript == context)
        return lastFound;
    const auto found = registry().find(JSContextGetGlobalContext(context));
    if (found == registry().end())
        return nullptr;
    lastScript = context;
    return lastFound = found->second.get();
}

std::shared_ptr<ScriptContext> ScriptContext::existing(JSContextRef context) {
    ScriptContext* const found = find(context);
    return found ? found->shared_from_this() : nullptr;
}

void ScriptContext::noteDeparture() {
    for (const auto& [global, context] : registry())
        context->_helpers.noteDeparture();
}

size_t ScriptContext::liveContexts() {
    return registry().size();
}

ScriptContext::ScriptContext(JSGlobalContextRef context, JSObjectRef keeper) : _context(context) {
    static JSClassRef holderClass = [] {
        JSClassDefinition definition = kJSClassDefinitionEmpty;
        definition.className = "VeyraHolder";
        definition.attributes = kJSClassAttributeNoAutomaticPrototype;
        definition.finalize = holderFinalized;
        return JSClassCreate(&definition);
    }();
    static uint64_t serial = 0;
    _serial = ++serial;
    _holder = JSObjectMake(context, holderClass, new HolderData{context, _serial});
    if (keeper) {
        // One frame object of the engine may serve as the keeper of several contexts: each has a name of its own.
        setHiddenProperty(context, keeper, ("veyraHolder" + std::to_string(_serial)).c_str(), _holder);
    } else {
        JSValueProtect(context, _holder);
        _holderProtected = true;
    }
    // Without prototypes: no setter of the page may get in the way of what has to be kept.
    JSObjectSetPrototype(context, _holder, JSValueMakeNull(context));
    _slots = JSObjectMakeArray(context, 0, nullptr, nullptr);
    JSObjectSetPrototype(context, _slots, JSValueMakeNull(context));
    setHiddenProperty(context, _holder, "slots", _slots);

    JSObjectRef global = JSContextGetGlobalObject(context);
    if (JSObjectRef object = objectProperty(context, global, "Object")) {
        if ((_defineProperty = objectProperty(context, object, "defineProperty")))
            keep(_defineProperty);
    }
    if (JSObjectRef symbol = objectProperty(context, global, "Symbol")) {
        JSStringRef name = JSStringCreateWithUTF8CString("toStringTag");
        const JSValueRef tag = JSObjectGetProperty(context, symbol, name, nullptr);
        JSStringRelease(name);
        _toStringTag = tag && JSValueIsSymbol(context, tag) ? tag : nullptr;
    }
    if ((_console = objectProperty(context, global, "console"))) {
        keep(_console);
        if ((_consoleError = objectProperty(context, _console, "error")))
            keep(_consoleError);
    }
}

// The collector calls this, on whatever thread it sweeps: it touches neither the engine nor the context.
void ScriptContext::holderFinalized(JSObjectRef holder) {
    const std::unique_ptr<HolderData> data(static_cast<HolderData*>(JSObjectGetPrivate(holder)));
    webThread().async([context = data->context, serial = data->serial] {
        const auto found = registry().find(context);
        // A newer context may have come to live at the same address, and its holder at the address of this one.
        if (found != registry().end() && found->second->_serial == serial) {
            const auto dead = found->second;
            dead->invalidate();
        }
    });
}

void ScriptContext::invalidate() {
    if (!_alive)
        return;
    const auto self = shared_from_this();
    _alive = false;
    _helpers.end();
    if (lastFound == this)
        lastFound = nullptr;
    const auto found = registry().find(_context);
    if (found != registry().end() && found->second.get() == this)
        registry().erase(found);
    if (_holderProtected) {
        JSValueUnprotect(_context, _holder);
        _holderProtected = false;
    }
    _objects.clear();
    _keptWrappers.clear();
    auto handlers = std::move(_deathHandlers);
    for (auto& handler : handlers)
        handler();
}

void ScriptContext::onDeath(std::function<void()> handler) {
    _deathHandlers.push_back(std::move(handler));
}

void ScriptContext::setSuspended(bool suspended) {
    _suspended = suspended;
    _helpers.setStopped(!isUsable());
    if (!suspended)
        reclaimSlots();
}

JSObjectRef ScriptContext::helperFunction(const char* source) {
    JSObjectRef& helper = _helperFunctions[source];
    if (!helper && isUsable()) {
        JSStringRef text = JSStringCreateWithUTF8CString(source);
        const JSValueRef made = JSEvaluateScript(_context, text, nullptr, nullptr, 1, nullptr);
        JSStringRelease(text);
        if (made && JSValueIsObject(_context, made)) {
            helper = JSValueToObject(_context, made, nullptr);
            keep(helper);
        }
    }
    return helper;
}

unsigned ScriptContext::keep(JSObjectRef object) {
    if (_freeSlots.empty())
        reclaimSlots();
    unsigned slot;
    if (_freeSlots.empty()) {
        slot = _nextSlot++;
    } else {
        slot = _freeSlots.back();
        _freeSlots.pop_back();
    }
    JSObjectSetPropertyAtIndex(_context, _slots, slot, object, nullptr);
    return slot;
}

void ScriptContext::releaseSlot(unsigned slot) {
    bool mustQueue;
    {
        std::lock_guard guard(_releasedMutex);
        _released.push_back(slot);
        mustQueue = !std::exchange(_reclaimQueued, true);
    }
    if (mustQueue)
        webThread().async([self = weak_from_this()] {
            const auto context = self.lock();
            if (!context)
                return;
            {
                std::lock_guard guard(context->_releasedMutex);
                context->_reclaimQueued = false;
            }
            context->reclaimSlots();
        });
}

void ScriptContext::reclaimSlots() {
    std::vector<unsigned> released;
    {
        std::lock_guard guard(_releasedMutex);
        if (!isUsable())
            return; // a suspended page reclaims when it is shown again
        released.swap(_released);
    }
    for (const unsigned slot : released) {
        JSObjectSetPropertyAtIndex(_context, _slots, slot, JSValueMakeUndefined(_context), nullptr);
        _freeSlots.push_back(slot);
    }
    if (!released.empty())
        std::erase_if(_objects, [](const auto& entry) { return entry.second.expired(); });
}

// At the end of a call its arguments and results are still on the caller's stack, so that the engine's collector sees
// them: the last moment to keep those that native code holds on to.
void ScriptContext::settle(size_t firstArgument, size_t firstWrapper) {
    while (_arguments.size() > firstArgument) {
        const auto argument = std::move(_arguments.back());
        _arguments.pop_back();
        // With one reference nobody else can take another: the count cannot grow.
        if (argument.use_count() > 1 && isUsable() && !argument->_slot) {
            argument->_slot = keep(argument->_object);
            _objects[argument->_object] = argument;
        }
    }
    const auto isHeld = [](const Wrapper& wrapper) { return wrapper.object.use_count() > 1; };
    while (_recentWrappers.size() > firstWrapper) {
        Wrapper wrapper = std::move(_recentWrappers.back());
        _recentWrappers.pop_back();
        if (isHeld(wrapper) && isUsable()) {
            wrapper.slot = keep(wrapper.script);
            _keptWrappers.push_back(std::move(wrapper));
        }
    }
    std::erase_if(_keptWrappers, [&](const Wrapper& wrapper) {
        if (isHeld(wrapper))
            return false;
        releaseSlot(wrapper.slot);
        return true;
    });
}

void ScriptContext::reportException(JSValueRef exception) {
    if (!isUsable() || !exception)
        return;
    if (_consoleError)
        JSObjectCallAsFunction(_context, _consoleError, _console, 1, &exception, nullptr);
}

JSObjectRef ScriptContext::makeBareObject(JSContextRef script) {
    JSObjectRef object = JSObjectMake(script, nullptr, nullptr);
    JSObjectSetPrototype(script, object, JSValueMakeNull(script));
    return object;
}

JSValueRef ScriptContext::makeError(JSContextRef script, const NSString& message) {
    JSStringRef text = makeString(message);
    const JSValueRef argument = JSValueMakeString(script, text);
    JSStringRelease(text);
    return JSObjectMakeError(script, 1, &argument, nullptr);
}

} // namespace veyra
