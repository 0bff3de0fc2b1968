// Global functions of a bare script, made of C++ functions. Script thread; the script engine owns what is made.
#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <functional>
#include <span>
#include <string>

namespace veyra {

/// Returns null for undefined; sets the exception to throw it.
using ScriptFunction = std::function<JSValueRef(std::span<const JSValueRef> arguments, JSValueRef* exception)>;

/// A script function that calls `body`, which lives until the engine collects the function.
JSObjectRef makeScriptFunction(JSContextRef context, ScriptFunction body);

/// Sets a property that behaves as one that a script assigned.
void setScriptProperty(JSContextRef context, JSObjectRef object, const char* name, JSValueRef value);

/// Reads a property; undefined when reading throws.
JSValueRef scriptProperty(JSContextRef context, JSObjectRef object, const char* name);

/// The engine's string conversion; "" when it throws, with the exception stored when asked for.
std::string scriptText(JSContextRef context, JSValueRef value, JSValueRef* exception = nullptr);

/// A TypeError with that message.
JSValueRef makeTypeError(JSContextRef context, const std::string& message);

} // namespace veyra
