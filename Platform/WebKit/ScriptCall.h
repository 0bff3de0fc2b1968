// The scope of one call from a script into native code: collects the exception that the call leaves behind. Web thread;
// scopes nest as calls nest.
#pragma once

#include "Platform/Foundation/NSException.h"
#include "Platform/WebKit/ScriptContext.h"

#include <new>
#include <optional>

namespace veyra {

class ScriptCall {
public:
    explicit ScriptCall(ScriptContext& context)
        : _context(context), _outer(_current), _firstArgument(context._arguments.size()),
          _firstWrapper(context._recentWrappers.size()) {
        _current = this;
        ++_context._callDepth;
    }
    ~ScriptCall() {
        _current = _outer;
        if (_context.hasToSettle(_firstArgument, _firstWrapper))
            _context.settle(_firstArgument, _firstWrapper);
        --_context._callDepth;
    }
    ScriptCall(const ScriptCall&) = delete;
    ScriptCall& operator=(const ScriptCall&) = delete;

    /// The innermost call that is running, or null.
    static ScriptCall* current() { return _current; }
    void setPendingException(NSString message) { _pending = std::move(message); }

    /// Runs `body`, which returns the script result of the call. A pending message, an NSException (its reason), or
    /// another C++ exception becomes an Error in `*exception` instead, and the result is undefined.
    template <class Body>
    static JSValueRef run(ScriptContext& context, JSContextRef script, JSValueRef* exception, Body&& body) {
        ScriptCall call(context);
        JSValueRef result = nullptr;
        try {
            result = body();
        } catch (const NSException& raised) {
            call.setPendingException(raised.reason());
        } catch (const std::bad_alloc&) {
            call.setPendingException("Out of memory");
        } catch (const std::exception& other) {
            call.setPendingException(NSString(std::string_view(other.what())));
        }
        if (call._pending) {
            if (exception)
                *exception = ScriptContext::makeError(script, *call._pending);
            result = nullptr;
        }
        return result ? result : JSValueMakeUndefined(script);
    }

private:
    // Calls run on the web thread only: one chain is enough, and a thread-local one costs a look-up in a loadable
    // module.
    static inline ScriptCall* _current = nullptr;

    ScriptContext& _context;
    ScriptCall* const _outer;
    const size_t _firstArgument, _firstWrapper; // of this call, in the context's lists
    std::optional<NSString> _pending;
};

} // namespace veyra
