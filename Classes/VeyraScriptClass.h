// The page's "GeoMap" object: a script class with constants. Web thread.
#pragma once

#include "Platform/Foundation/NSError.h"

#include <JavaScriptCore/JavaScript.h>

namespace veyra {

/// Makes a script class of that name with one object, and makes the object the value of the global property of that
/// name. True when it did. False without an error when the property is an object already: nothing is installed, the
/// outputs keep what was made. False with an error (when asked for) when the property could not be read or written: the
/// outputs are null.
bool JSClassCreateAndInsertObjectInContext(const NSString& className, JSClassRef* classRef, JSObjectRef* classObject,
                                           JSContextRef context, std::shared_ptr<NSError>* error);

/// Sets a read-only property. False, with an error when asked for, when the engine threw.
bool JSObjectRefInsertNumberConstant(JSObjectRef object, const NSString& name, JSContextRef context,
                                     std::shared_ptr<NSError>* error, double value);
bool JSObjectRefInsertStringConstant(JSObjectRef object, const NSString& name, const NSString& value,
                                     JSContextRef context, std::shared_ptr<NSError>* error);

NSString NSStringFromJSStringRef(JSStringRef string);
/// The engine's own string conversion; "" for a value whose conversion throws.
NSString NSStringFromJSValue(JSValueRef value, JSContextRef context);

/// Installs "GeoMap" with its six numbers. Logs a failure under `caller`; does nothing in a page that has the object.
void installGeoMap(JSContextRef context, const char* caller);

} // namespace veyra
