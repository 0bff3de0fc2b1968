#include "Platform/WebKit/ScriptElementReader.h"

#include <algorithm>
#include <array>
#include <exception>
#include <new>
#include <utility>

namespace veyra {

/// The walk that is under way: what a getter calls may begin another one, which ends first.
class ScriptElementWalk {
public:
    ScriptElementWalk(ScriptContext& ofPage, const ScriptKeySequence& keys,
                      const std::function<void(const id&)>& visitor);
    ~ScriptElementWalk();
    ScriptElementWalk(const ScriptElementWalk&) = delete;
    ScriptElementWalk& operator=(const ScriptElementWalk&) = delete;
    void run(JSObjectRef array, uint64_t length);

    static inline ScriptElementWalk* current = nullptr;

    ScriptContext& context;
    const ScriptKeySequence& sequence;
    const ScriptHelpers::ElementReader& reader;
    const std::function<void(const id&)>& visit;
    std::exception_ptr thrown;

private:
    ScriptElementWalk* const _outer;
};

namespace {

constexpr size_t maximumKeys = 32;

/// How the reader tells what it has read.
enum Kind : uint8_t { Nothing, Number, False, True, Other, Null, Text };

/// True in the reader when the value `a` is what the sequence expects.
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

/// The reader's text. It names nothing that a page could have replaced. All keys of an element are read before the
/// shared arrays are written: a getter may begin another walk.
std::string readerText(const ScriptKeySequence& sequence) {
    const std::string hasStopped = "stop[0] !== 0";
    std::string variables = "n = 0";
    std::string reads;
    std::string kinds;
    std::string arguments = "e, n";
    for (size_t i = 0; i < sequence.keys.size(); ++i) {
        const std::string index = std::to_string(i);
        const std::string a = "a" + index;
        variables += ", " + a;
        arguments += ", " + a;
        reads += "try { " + a + " = " + "e." + sequence.keys[i].name.utf8() + "; } catch (x) { report(x); }\n" +
                 "n = " + std::to_string(i + 1) + ";\n" + "if (" + hasStopped + " || !(" +
                 conditionFor(sequence.keys[i].expected, a) + ")) break read;\n";
        kinds += "if (typeof " + a + " === 'number') { kinds[" + index + "] = 1; numbers[" + index + "] = " + a +
                 "; } else kinds[" + index + "] = " + a + " === undefined ? 0 : " + a + " === null ? 5 : " + a +
                 " === false ? 2 : " + a + " === true ? 3 : typeof " + a + " === 'string' ? 6 : 4;\n";
    }
    return "(function (take, report, kinds, numbers, stop) { 'use strict';\n"
           "return function (array, length) {\n"
           "for (let i = 0; i < length; ++i) {\n"
           "let e, " +
           variables +
           ";\n"
           "try { e = array[i]; } catch (x) { report(x); }\n"
           "if (" +
           hasStopped +
           ") return;\n"
           "read: if (typeof e === 'object' && e !== null || typeof e === 'function') {\n" +
           reads + "}\n" + kinds + "if (take(" + arguments +
           ")) return;\n"
           "} }; })";
}

JSObjectRef asObject(JSContextRef script, JSValueRef value) {
    return value && JSValueIsObject(script, value) ? JSValueToObject(script, value, nullptr) : nullptr;
}

/// The values that were read ahead of an element, in the order of its sequence.
class ElementValues final : public ScriptValuesAhead {
public:
    /// `values` are those of the running call, which keeps them alive. What other walks use too is copied.
    ElementValues(const ScriptElementWalk& walk, size_t count, const JSValueRef* values)
        : _context(walk.context), _keys(walk.sequence.keys), _count(count), _values(values) {
        std::copy_n(walk.reader.kinds, count, _kinds.begin());
        std::copy_n(walk.reader.numbers, count, _numbers.begin());
    }

    bool next(const NSString& key, Kind& kind, double& number, JSValueRef& value) override {
        if (_next >= _count || !(_keys[_next].name == key)) {
            _count = 0; // what follows is read singly
            return false;
        }
        static constexpr std::array kinds{Kind::Nothing, Kind::Number, Kind::Boolean, Kind::Boolean,
                                          Kind::Value,   Kind::Nil,    Kind::Text};
        const size_t index = _next++;
        kind = kinds[_kinds[index]];
        number = kind == Kind::Boolean ? _kinds[index] == True : _numbers[index];
        value = _values[index];
        return true;
    }

    // A sequence may read a string several times over.
    id text(JSValueRef value) override {
        if (value != _lastText) {
            _lastText = value;
            _lastNative = _context.toNative(value);
        }
        return _lastNative;
    }

private:
    ScriptContext& _context;
    const std::vector<ScriptKeySequence::Key>& _keys;
    size_t _count, _next = 0;
    const JSValueRef* const _values;
    std::array<uint8_t, maximumKeys> _kinds;
    std::array<double, maximumKeys> _numbers;
    JSValueRef _lastText = nullptr;
    id _lastNative;
};

/// function (element, count of values read, values…): whether the walk ends. No exception may pass the engine.
JSValueRef takeElement(JSContextRef script, JSObjectRef, JSObjectRef, size_t count, const JSValueRef values[],
                       JSValueRef*) {
    ScriptElementWalk& walk = *ScriptElementWalk::current;
    if (walk.context.globalContext()) {
        try {
            const auto read = static_cast<size_t>(JSValueToNumber(script, values[1], nullptr));
            ElementValues ahead(walk, std::min(read, count - 2), values + 2);
            walk.context.visitElement(values[0], ahead, walk.visit);
        } catch (...) {
            walk.thrown = std::current_exception();
        }
    }
    return JSValueMakeBoolean(script, walk.thrown || !walk.context.globalContext());
}

/// function (exception of a getter).
JSValueRef reportException(JSContextRef script, JSObjectRef, JSObjectRef, size_t count, const JSValueRef values[],
                           JSValueRef*) {
    if (count > 0)
        ScriptElementWalk::current->context.reportException(values[0]);
    return JSValueMakeUndefined(script);
}

ScriptHelpers::ElementReader makeReader(JSContextRef script, const ScriptKeySequence& sequence, JSObjectRef stop) {
    JSObjectRef kinds = JSObjectMakeTypedArray(script, kJSTypedArrayTypeUint8Array, maximumKeys, nullptr);
    JSObjectRef numbers = JSObjectMakeTypedArray(script, kJSTypedArrayTypeFloat64Array, maximumKeys, nullptr);
    JSStringRef text = JSStringCreateWithUTF8CString(readerText(sequence).c_str());
    JSObjectRef maker = asObject(script, JSEvaluateScript(script, text, nullptr, nullptr, 1, nullptr));
    JSStringRelease(text);
    if (!kinds || !numbers || !maker)
        return {};
    const JSValueRef arguments[] = {JSObjectMakeFunctionWithCallback(script, nullptr, takeElement),
                                    JSObjectMakeFunctionWithCallback(script, nullptr, reportException), kinds, numbers,
                                    stop};
    const JSValueRef function =
        JSObjectCallAsFunction(script, maker, nullptr, std::size(arguments), arguments, nullptr);
    return {asObject(script, function),
            static_cast<const uint8_t*>(JSObjectGetTypedArrayBytesPtr(script, kinds, nullptr)),
            static_cast<double*>(JSObjectGetTypedArrayBytesPtr(script, numbers, nullptr))};
}

} // namespace

const ScriptHelpers::ElementReader& ScriptHelpers::elementReader(const ScriptKeySequence& sequence) {
    ElementReader& reader = _elementReaders[&sequence];
    if (!reader.function) {
        reader = makeReader(_context.globalContext(), sequence, stopArray());
        if (reader.function)
            _context.keep(reader.function); // which keeps the arrays
    }
    return reader;
}

ScriptElementWalk::ScriptElementWalk(ScriptContext& ofPage, const ScriptKeySequence& keys,
                                     const std::function<void(const id&)>& visitor)
    : context(ofPage), sequence(keys), reader(ofPage.helpers().elementReader(keys)), visit(visitor),
      _outer(std::exchange(current, this)) {}

ScriptElementWalk::~ScriptElementWalk() {
    current = _outer;
}

void ScriptElementWalk::run(JSObjectRef array, uint64_t length) {
    const JSContextRef script = context.globalContext();
    if (!reader.function)
        throw std::bad_alloc();
    const JSValueRef arguments[] = {array, JSValueMakeNumber(script, static_cast<double>(length))};
    JSValueRef exception = nullptr;
    JSObjectCallAsFunction(script, reader.function, nullptr, std::size(arguments), arguments, &exception);
    if (exception) // the engine's own: its stack is used up
        context.reportException(exception);
}

void visitScriptElements(WebScriptObject& array, uint64_t length, const ScriptKeySequence& sequence,
                         const std::function<void(const id&)>& visit) {
    const auto context = array.context();
    JSObjectRef object = array.scriptObject();
    if (!object)
        return;
    ScriptElementWalk walk(*context, sequence, visit);
    walk.run(object, length);
    if (walk.thrown)
        std::rethrow_exception(walk.thrown);
}

} // namespace veyra
