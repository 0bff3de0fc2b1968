#include "Platform/WebKit/ScriptNumbers.h"

#include <algorithm>
#include <new>

namespace veyra {

namespace {

// Numbers that are handed over at a time.
constexpr size_t runLength = 8192;

// Returns how many numbers were copied, or -1 less that when the next element threw.
constexpr const char* copier = R"((function (array, index, count, numbers, odd) {
    'use strict';
    let copied = 0;
    try {
        for (; copied < count; ++copied) {
            const value = array[index + copied];
            if (typeof value !== 'number') {
                odd[0] = value;
                return copied;
            }
            numbers[copied] = value;
        }
    } catch (error) {
        odd[0] = error;
        return -1 - copied;
    }
    return copied;
}))";

} // namespace

void ScriptNumbers::read(uint64_t count, const std::function<void(std::span<const double>)>& take) {
    const auto context = _array.context();
    if (count == 0 || !_array.scriptObject()) {
        return;
    }
    JSGlobalContextRef const script = context->globalContext();
    const auto length = static_cast<size_t>(std::min<uint64_t>(count, runLength));
    // Found by the collector on this thread's stack, like the array, which its owner keeps.
    JSObjectRef const numbers = JSObjectMakeTypedArray(script, kJSTypedArrayTypeFloat64Array, length, nullptr);
    const JSValueRef none = JSValueMakeUndefined(script);
    JSObjectRef const odd = JSObjectMakeArray(script, 1, &none, nullptr);
    if (!numbers || !odd) {
        throw std::bad_alloc();
    }
    for (uint64_t index = 0; index < count && _array.scriptObject();) {
        const auto wanted = static_cast<size_t>(std::min<uint64_t>(count - index, length));
        const size_t copied = copy(index, wanted, numbers, odd);
        if (!_array.scriptObject()) {
            return;
        }
        if (copied > 0) {
            const auto* const bytes =
                static_cast<const double*>(JSObjectGetTypedArrayBytesPtr(script, numbers, nullptr));
            if (!bytes) {
                throw std::bad_alloc();
            }
            take({bytes, copied});
        }
        index += copied;
        if (copied < wanted) {
            const double number = context->toNative(JSObjectGetPropertyAtIndex(script, odd, 0, nullptr)).doubleValue();
            take({&number, 1});
            ++index;
        }
    }
}

size_t ScriptNumbers::copy(uint64_t index, size_t count, JSObjectRef numbers, JSObjectRef odd) {
    const auto context = _array.context();
    JSGlobalContextRef const script = context->globalContext();
    JSObjectRef const function = context->helperFunction(copier);
    const JSValueRef arguments[] = {_array.scriptObject(), JSValueMakeNumber(script, static_cast<double>(index)),
                                    JSValueMakeNumber(script, static_cast<double>(count)), numbers, odd};
    JSValueRef exception = nullptr;
    const JSValueRef result =
        function ? JSObjectCallAsFunction(script, function, nullptr, std::size(arguments), arguments, &exception)
                 : nullptr;
    if (!_array.scriptObject()) {
        return 0;
    }
    if (!result || exception) { // the page has no stack left for it
        context->reportException(exception);
        JSObjectSetPropertyAtIndex(script, odd, 0, JSValueMakeUndefined(script), nullptr);
        return 0;
    }
    const double copied = JSValueToNumber(script, result, nullptr);
    if (copied >= 0) {
        return static_cast<size_t>(copied);
    }
    context->reportException(JSObjectGetPropertyAtIndex(script, odd, 0, nullptr));
    if (_array.scriptObject()) {
        JSObjectSetPropertyAtIndex(script, odd, 0, JSValueMakeUndefined(script), nullptr);
    }
    return static_cast<size_t>(-1 - copied);
}

} // namespace veyra
