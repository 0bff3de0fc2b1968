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
    explicit ScriptCall(ScriptContext& context);
    ~ScriptCall();
    ScriptCall(const ScriptCall&) = delete;
    ScriptCall& operator=(const ScriptCall&) = delete;

    /// The innermost call that is running, or null.
    static ScriptCall* current();
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
        return call.finish(script, result, exception);
    }

private:
    JSValueRef finish(JSContextRef script, JSValueRef result, JSValueRef* exception);

    ScriptContext& _context;
    ScriptCall* const _outer;
    const size_t _firstArgument, _firstWrapper; // of this call, in the context's lists
    std::optional<NSString> _pending;
};

} // namespace veyra
