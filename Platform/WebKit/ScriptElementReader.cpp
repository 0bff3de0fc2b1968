#include "Platform/WebKit/ScriptElementReader.h"

#include <algorithm>
#include <array>
#include <exception>
#include <utility>

namespace veyra {

namespace {

constexpr size_t maximumKeys = 32;

/// How the helper tells what it has read.
enum Kind : uint8_t { Nothing, Number, False, True, Other };

/// The walk that is under way: what a getter calls may begin another one, which ends first.
struct Walk {
    ScriptContext& context;
    const ScriptKeySequence& sequence;
    const ScriptElementHelper& helper;
    const std::function<void(const id&)>& visit;
    std::exception_ptr thrown;
};
Walk* currentWalk = nullptr;

std::string quotedName(const NSString& name) {
    return "e." + name.utf8();
}

/// True in the helper when the value `a` is what the sequence expects.
std::string conditionFor(ScriptKeyValue expected, const std::string& a) {
    const std::string present =
        "typeof " + a + " === 'number' || typeof " + a + " === 'string' || typeof " + a + " === 'boolean'";
    switch (expected) {
    case ScriptKeyValue::Present:
        return present;
    case ScriptKeyValue::String:
        return "typeof " + a + " === 'string'";
    case ScriptKeyValue::Convertible:
        return a + " === undefined || " + a + " === null || " + present;
    case ScriptKeyValue::Any:
        return "true";
    }
    return "false";
}

/// The helper's text. It names nothing that a page could have replaced. All keys of an element are read before the
/// shared arrays are written: a getter may begin another walk.
std::string helperText(const ScriptKeySequence& sequence) {
    std::string variables = "n = 0";
    std::string reads;
    std::string kinds;
    std::string arguments = "e, n";
    for (size_t i = 0; i < sequence.keys.size(); ++i) {
        const std::string index = std::to_string(i);
        const std::string a = "a" + index;
        variables += ", " + a;
        arguments += ", " + a;
        reads += "try { " + a + " = " + quotedName(sequence.keys[i].name) + "; } catch (x) { report(x); }\n" +
                 "n = " + std::to_string(i + 1) + ";\n" + "if (!(" + conditionFor(sequence.keys[i].expected, a) +
                 ")) break read;\n";
        kinds += "if (typeof " + a + " === 'number') { kinds[" + index + "] = 1; numbers[" + index + "] = " + a +
                 "; } else kinds[" + index + "] = " + a + " === undefined || " + a + " === null ? 0 : " + a +
                 " === false ? 2 : " + a + " === true ? 3 : 4;\n";
    }
    return "(function (take, report, kinds, numbers) { 'use strict';\n"
           "return function (array, length) {\n"
           "for (let i = 0; i < length; ++i) {\n"
           "let e, " +
           variables +
           ";\n"
           "try { e = array[i]; } catch (x) { report(x); }\n"
           "read: if (typeof e === 'object' && e !== null || typeof e === 'function') {\n" +
           reads + "}\n" + kinds + "if (take(" + arguments +
           ")) return;\n"
           "} }; })";
}

JSObjectRef asObject(JSContextRef script, JSValueRef value) {
    return value && JSValueIsObject(script, value) ? JSValueToObject(script, value, nullptr) : nullptr;
}

/// The values that were read ahead of an element, in the order of its sequence.
class ReadValues final : public WebScriptObjectValues {
public:
    /// Copies what is shared with other walks.
    ReadValues(const Walk& walk, size_t count, const JSValueRef* values) : _walk(walk), _count(count), _values(values) {
        std::copy_n(walk.helper.kinds, count, _kinds.begin());
        std::copy_n(walk.helper.numbers, count, _numbers.begin());
    }

    std::optional<id> take(const NSString& key) override {
        if (_next >= _count || _walk.sequence.keys[_next].name != key) {
            _count = 0;
            return std::nullopt;
        }
        const size_t index = _next++;
        switch (_kinds[index]) {
        case Nothing:
            return id(WebUndefined{});
        case Number:
            return id(_numbers[index]);
        case False:
            return id(false);
        case True:
            return id(true);
        default:
            return _walk.context.toNative(_values[index]);
        }
    }

private:
    const Walk& _walk;
    size_t _count, _next = 0;
    const JSValueRef* const _values; // of the call, which keeps them alive
    std::array<uint8_t, maximumKeys> _kinds;
    std::array<double, maximumKeys> _numbers;
};

JSValueRef takeElement(JSContextRef script, JSObjectRef, JSObjectRef, size_t count, const JSValueRef values[],
                       JSValueRef*) {
    Walk& walk = *currentWalk;
    if (walk.context.globalContext()) {
        try {
            const auto read = static_cast<size_t>(JSValueToNumber(script, values[1], nullptr));
            ReadValues ahead(walk, std::min(read, count - 2), values + 2);
            walk.context.visitElement(values[0], ahead, walk.visit);
        } catch (...) {
            walk.thrown = std::current_exception();
        }
    }
    return JSValueMakeBoolean(script, walk.thrown || !walk.context.globalContext());
}

JSValueRef reportElement(JSContextRef script, JSObjectRef, JSObjectRef, size_t count, const JSValueRef values[],
                         JSValueRef*) {
    if (count > 0)
        currentWalk->context.reportException(values[0]);
    return JSValueMakeUndefined(script);
}

JSObjectRef makeFunction(JSContextRef script, JSObjectCallAsFunctionCallback callback) {
    return JSObjectMakeFunctionWithCallback(script, nullptr, callback);
}

/// Null when the engine has no memory for it.
ScriptElementHelper makeHelper(JSContextRef script, const ScriptKeySequence& sequence) {
    JSObjectRef kinds = JSObjectMakeTypedArray(script, kJSTypedArrayTypeUint8Array, maximumKeys, nullptr);
    JSObjectRef numbers = JSObjectMakeTypedArray(script, kJSTypedArrayTypeFloat64Array, maximumKeys, nullptr);
    JSStringRef text = JSStringCreateWithUTF8CString(helperText(sequence).c_str());
    const JSValueRef maker = JSEvaluateScript(script, text, nullptr, nullptr, 1, nullptr);
    JSStringRelease(text);
    if (!kinds || !numbers || !asObject(script, maker))
        return {};
    const JSValueRef arguments[] = {makeFunction(script, takeElement), makeFunction(script, reportElement), kinds,
                                    numbers};
    const JSValueRef function =
        JSObjectCallAsFunction(script, asObject(script, maker), nullptr, std::size(arguments), arguments, nullptr);
    return {asObject(script, function),
            static_cast<const uint8_t*>(JSObjectGetTypedArrayBytesPtr(script, kinds, nullptr)),
            static_cast<const double*>(JSObjectGetTypedArrayBytesPtr(script, numbers, nullptr))};
}

} // namespace

const ScriptElementHelper* ScriptContext::elementHelper(const ScriptKeySequence& sequence) {
    const auto [entry, isNew] = _elementHelpers.try_emplace(&sequence);
    if (isNew) {
        entry->second = makeHelper(_context, sequence);
        if (entry->second.function)
            keep(entry->second.function);
    }
    return entry->second.function ? &entry->second : nullptr;
}

void visitScriptElements(WebScriptObject& array, uint64_t length, const ScriptKeySequence& sequence,
                         const std::function<void(const id&)>& visit) {
    const auto context = array.context();
    JSObjectRef object = array.scriptObject();
    const ScriptElementHelper* const helper = object ? context->elementHelper(sequence) : nullptr;
    if (!helper)
        return;
    const JSContextRef script = context->globalContext();
    Walk walk{*context, sequence, *helper, visit, nullptr};
    Walk* const outer = std::exchange(currentWalk, &walk);
    const JSValueRef arguments[] = {object, JSValueMakeNumber(script, static_cast<double>(length))};
    JSValueRef exception = nullptr;
    JSObjectCallAsFunction(script, helper->function, nullptr, std::size(arguments), arguments, &exception);
    currentWalk = outer;
    if (exception) // the engine's own: its stack is used up
        context->reportException(exception);
    if (walk.thrown)
        std::rethrow_exception(walk.thrown);
}

} // namespace veyra
