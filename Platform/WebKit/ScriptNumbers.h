// Reads the elements of a script array as numbers, many at a time: a function compiled in the page copies them into an
// array of doubles up to the first that is no number, which native code converts, and so on behind it. Each element is
// read once, in order, as `webScriptValueAtIndex` reads it: getters and proxies notice no difference, and an exception
// of theirs is written to the page's console and counts as undefined. Web thread.
//
// **Reading an element can run arbitrary script.**
#pragma once

#include "Platform/WebKit/WebScriptObject.h"

#include <span>

namespace veyra {

class ScriptNumbers {
public:
    /// For the elements of `array` (kept alive by the caller).
    explicit ScriptNumbers(WebScriptObject& array) : _array(array) {}

    /// Calls `take` with the elements 0 to count - 1 in order, some thousands at a time. Throws NSException when an
    /// element has no `doubleValue`; what came before it may not have been handed over. Memory does not grow with
    /// `count`. The reading ends when the page goes.
    void read(uint64_t count, const std::function<void(std::span<const double>)>& take);

private:
    /// Copies up to `count` elements from `index` on to the front of `numbers`; returns how many, fewer when the next
    /// one is no number: then `odd` holds its value. The next one's exception, if it threw one, has been reported.
    size_t copy(uint64_t index, size_t count, JSObjectRef numbers, JSObjectRef odd);

    WebScriptObject& _array;
};

} // namespace veyra
