// Short forms for what this host does with the script engine's C interface. Web thread only. An exception that one of
// our own scripts throws is a fault of ours, or of a page that has left it no stack: it is logged, and the result is
// null. Calling a null function gives null.
#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <initializer_list>
#include <string>

namespace veyra {

/// Runs our script text and returns the function or object that it gives. `name` appears in its errors.
JSObjectRef evaluateScript(JSContextRef context, const char* source, const char* name);

JSValueRef callFunction(JSContextRef context, JSObjectRef function, std::initializer_list<JSValueRef> arguments);
JSValueRef callMethod(JSContextRef context, JSObjectRef object, const char* name,
                      std::initializer_list<JSValueRef> arguments);

/// The property when it is an object, else null.
JSObjectRef objectProperty(JSContextRef context, JSObjectRef object, const char* name);
void setProperty(JSContextRef context, JSObjectRef object, const char* name, JSValueRef value);
void defineFunction(JSContextRef context, JSObjectRef object, const char* name,
                    JSObjectCallAsFunctionCallback function);

/// UTF-8; a lone surrogate becomes U+FFFD. Empty for what has no text.
std::string textOf(JSContextRef context, JSValueRef value);
/// 0 for what is no finite number.
double numberOf(JSContextRef context, JSValueRef value);

} // namespace veyra
