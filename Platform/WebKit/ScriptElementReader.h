// Walks over the objects in a script array, or takes a single one, and reads a fixed sequence of keys of each in
// compiled script, several times faster than key by key through the engine's interface. What native code then asks of
// an element is answered from what was read, as long as it asks for the same keys in the same order; else, and from the
// first value on that the sequence does not expect, keys are read one by one as ever. So every read, its order, its
// conversion and what it reports stay the same. Web thread.
#pragma once

#include "Platform/WebKit/WebScriptObject.h"

#include <functional>
#include <span>

namespace veyra {

/// What a key's value has to be for the next key to be read ahead; the sequence ends at any other value.
enum class ScriptKeyValue {
    Present,     ///< a number, a boolean or a string
    String,      ///< a string
    Convertible, ///< as Present, or null or undefined
    Any,
};

/// Keys in the order in which native code reads them. Made once, never destroyed.
struct ScriptKeySequence {
    struct Key {
        NSString name; ///< a script identifier
        ScriptKeyValue expected;
    };
    std::vector<Key> keys;
    /// True when native code asks an element for nothing but these keys and does not keep it. Elements that have simple
    /// values alone then come many at a time, under a script object that is no page's.
    bool isAll = false;
};

/// Calls `visit` with the elements 0 to `length` - 1, in order; ends when the page goes. An element that nobody keeps
/// after its visit costs the context nothing. What `visit` throws ends the walk and is thrown on.
void visitScriptElements(WebScriptObject& array, uint64_t length, const ScriptKeySequence& sequence,
                         const std::function<void(const id&)>& visit);
/// Calls `visit` with the object, even when its page has gone or goes.
void visitScriptObject(WebScriptObject& object, const ScriptKeySequence& sequence,
                       const std::function<void(const id&)>& visit);

} // namespace veyra
