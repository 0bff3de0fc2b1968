// What the plug-in adds to script objects: the one check of what scripts hand in, and the one way in which events reach
// the page.
#pragma once

#include "Platform/WebKit/ScriptElementReader.h"

namespace veyra {

/// Checks an object that a script handed in. True for an instance of `primaryClass` (may be null), whose keys are not
/// looked at, and for a script object that has every required key; else raises a script exception that names `caller`
/// (a string or nil) and, for absent keys, all of them in the order required. Runs on the web thread, within the
/// script's call; **reading the keys can run arbitrary script**.
bool VeyraValidateWebScriptObject(const id& object, Class primaryClass, const id& caller,
                                  const std::vector<NSString>& requiredKeys);

/// The number under a key of one of the four geometry values: read leniently, a value without a conversion counts as 0.
double geometryValueForKey(NSObject& object, const NSString& key);

/// Calls `visit` with each element of a script array that has passed validation, in order, as far as its "length" says;
/// a length that is no number counts as 0. A false, huge length costs what a script loop would, in constant memory; the
/// walk ends when the page goes.
void forEachElement(const id& array, const std::function<void(const id&)>& visit);
/// The same for elements of which `visit` reads these keys in this order; faster, and otherwise no different.
void forEachElement(const id& array, const ScriptKeySequence& keys, const std::function<void(const id&)>& visit);
/// Calls `visit` with one value; when it is a script object of which `visit` reads these keys in this order, that is
/// faster, and otherwise no different.
void withKeysReadAhead(const id& value, const ScriptKeySequence& keys, const std::function<void(const id&)>& visit);

/// Calls the listener's method on the web thread, in the order of sending; its result is discarded. A listener that is
/// no script object loses the event. Any thread.
void _veyra_webThreadCallWebScriptMethod(const id& listener, const NSString& name, NSArray arguments = {});

} // namespace veyra
