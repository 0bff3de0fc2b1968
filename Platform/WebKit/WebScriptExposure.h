// Puts the script names of a native class on a script object, as its class's own tables say: accessors for the keys,
// functions for the selectors. Web thread.
#pragma once

#include "Platform/Foundation/SelfSharingObject.h"
#include "Platform/WebKit/ScriptContext.h"

namespace veyra {

/// Finds the native object behind a script object; null when there is none. The host keeps the object alive until a
/// script runs or the call returns; who runs scripts holds it for itself.
using ScriptObjectResolver = SelfSharingObject* (*)(JSContextRef context, JSObjectRef thisObject);

/// For a host whose script object is to be no native object's any more from now on: a call on it that is running, and
/// whose argument's getters have brought that about, ends as it would have. Web thread.
void objectLeaves(JSObjectRef thisObject, std::shared_ptr<NSObject> object);

/// Defines on `target` (a prototype or a single object) a non-enumerable accessor for each script key of `cls` and a
/// non-enumerable function for each of its script methods. `keys` are the native keys in order. Reads on a `this` that
/// `resolver` knows nothing of give undefined, writes make an ordinary own property, calls throw a TypeError; a `this`
/// whose context is dead throws a ReferenceError. One class and one resolver a process.
void exposeClass(ScriptContext& context, JSObjectRef target, Class cls, const std::vector<NSString>& keys,
                 ScriptObjectResolver resolver);

} // namespace veyra
