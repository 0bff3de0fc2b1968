#include "Platform/WebKit/ScriptCall.h"

namespace veyra {

namespace {
// Calls run on the web thread only: one chain is enough, and a thread-local one costs a look-up in a loadable module.
ScriptCall* currentCall = nullptr;
}

ScriptCall::ScriptCall(ScriptContext& context)
    : _context(context), _outer(currentCall), _firstArgument(context._arguments.size()),
      _firstWrapper(context._recentWrappers.size()) {
    currentCall = this;
    ++_context._callDepth;
}

ScriptCall::~ScriptCall() {
    currentCall = _outer;
    _context.settle(_firstArgument, _firstWrapper);
    --_context._callDepth;
}

ScriptCall* ScriptCall::current() {
    return currentCall;
}

JSValueRef ScriptCall::finish(JSContextRef script, JSValueRef result, JSValueRef* exception) {
    if (_pending) {
        if (exception)
            *exception = ScriptContext::makeError(script, *_pending);
        result = nullptr;
    }
    return result ? result : JSValueMakeUndefined(script);
}

} // namespace veyra
