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
    void runAlone(JSObjectRef element);
    void visitOne(JSContextRef script, size_t count, const JSValueRef values[]);
    void visitMany(JSContextRef script, size_t count, JSValueRef texts);

    static inline ScriptElementWalk* current = nullptr;

    ScriptContext& context;
    std::exception_ptr thrown;

private:
    using Arrays = ScriptHelpers::ElementReader::Arrays;
    /// Throws std::bad_alloc.
    static Arrays makeArrays(JSContextRef script, size_t values);
    void call(JSObjectRef reader, JSObjectRef object, uint64_t length, const Arrays& arrays, double room);

    const ScriptKeySequence& _sequence;
    const std::function<void(const id&)>& _visit;
    // Of arrays that this walk alone writes: its elements' values, one element after the other.
    std::span<uint8_t> _kinds;
    const double* _numbers = nullptr;
    ScriptElementWalk* const _outer;
};

namespace {

// Elements that come at a time, and units of the longest string of one that does. An element's strings are parts of one
// text, told by one number: where they begin times `textUnit`, plus their length.
constexpr uint64_t maximumRoom = 256, longestText = 1000, textUnit = 1024;
// The room for an object that is no array's.
constexpr double alone = -1;

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

/// The reader's text: of a function (array, length, kinds, numbers, room). It names nothing that a page could have
/// replaced. All keys of an element are read before its values are written, and a walk has arrays of its own: a getter
/// may begin another walk. Up to `room` elements of simple values wait for native code to take them together; the kinds
/// are 0 before one of these is written. With a room of -1 the array is itself the only element.
std::string readerText(const ScriptKeySequence& sequence) {
    const std::string count = std::to_string(sequence.keys.size());
    const std::string hasStopped = "stop[0] !== 0";
    std::string variables = "n = 0";
    std::string reads, kinds, waiting;
    std::string arguments = "e, n";
    for (size_t i = 0; i < sequence.keys.size(); ++i) {
        const std::string index = std::to_string(i);
        const std::string a = "a" + index;
        variables += ", " + a;
        arguments += ", " + a;
        reads += "try { " + a + " = " + "e." + sequence.keys[i].name.utf8() + "; } catch (x) { report(x); }\n" +
                 "n = " + std::to_string(i + 1) + ";\n" + "if (" + hasStopped + " || !(" +
                 conditionFor(sequence.keys[i].expected, a) + ")) break read;\n";
        const std::string other = a + " === null ? 5 : " + a + " === false ? 2 : " + a + " === true ? 3 : ";
        kinds += "if (typeof " + a + " === 'number') { kinds[" + index + "] = 1; numbers[" + index + "] = " + a +
                 "; } else kinds[" + index + "] = " + a + " === undefined ? 0 : " + other + "typeof " + a +
                 " === 'string' ? 6 : 4;\n";
        const std::string place = "[base + " + index + "] = ";
        waiting += "if (" + a + " !== undefined) {\nif (typeof " + a + " === 'number') { kinds" + place + "1; numbers" +
                   place + a + "; } else if (typeof " + a + " === 'string') {\nif (" + a + " !== last) {\nif (" + a +
                   ".length > " + std::to_string(longestText) + ") break wait;\nlast = " + a + "; at = size * " +
                   std::to_string(textUnit) + " + " + a + ".length; texts += " + a + "; size += " + a +
                   ".length;\n}\nkinds" + place + "6; numbers" + place + "at;\n} else {\nconst kind = " + other +
                   "4;\nif (kind === 4) break wait;\nkinds" + place + "kind;\n}\n}\n";
    }
    return "(function (take, takeMany, report, kindOf, stop) { 'use strict';\n"
           "return function (array, length, kinds, numbers, room) {\n"
           "let count = 0, base = 0, texts = '', size = 0, last, at = 0;\n"
           "for (let i = 0; i < length; ++i) {\n"
           "let e, " +
           variables +
           ";\n"
           "try { e = room < 0 ? array : array[i]; } catch (x) { report(x); }\n"
           "if (" +
           hasStopped +
           ") break;\n"
           "read: if (typeof e === 'object' && e !== null || typeof e === 'function') {\n" +
           reads + "}\nwait: if (room > 0 && n === " + count + " && !(" + hasStopped + ") && kindOf(e) === 0) {\n" +
           waiting + "base += " + count +
           ";\n"
           "if (++count < room) continue;\n"
           "if (takeMany(count, texts)) return;\n"
           "count = base = size = 0; texts = ''; last = undefined;\n"
           "continue;\n"
           "}\n"
           // The texts are emptied of what has not come to wait, too.
           "if (count !== 0 && takeMany(count, texts)) return;\n"
           "count = base = size = 0; texts = ''; last = undefined;\n" +
           kinds + "if (take(" + arguments +
           ")) return;\n"
           "}\n"
           "if (count !== 0) takeMany(count, texts);\n"
           "}; })";
}

JSObjectRef asObject(JSContextRef script, JSValueRef value) {
    return value && JSValueIsObject(script, value) ? JSValueToObject(script, value, nullptr) : nullptr;
}

/// The values that were read ahead of an element, in the order of its sequence.
class ElementValues : public ScriptValuesAhead {
public:
    /// The arrays are the walk's, which no other walk writes, and are not written while the element is visited.
    ElementValues(const ScriptKeySequence& sequence, size_t count, const uint8_t* kinds, const double* numbers)
        : _keys(sequence.keys), _count(count), _kinds(kinds), _numbers(numbers) {}

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
        value = valueAt(index);
        return true;
    }

protected:
    ~ElementValues() = default;

private:
    virtual JSValueRef valueAt(size_t index) const = 0;

    const std::vector<ScriptKeySequence::Key>& _keys;
    size_t _count, _next = 0;
    const uint8_t* const _kinds;
    const double* const _numbers;
};

/// Those of an element that came alone.
class SingleValues final : public ElementValues {
public:
    /// `values` are those of the running call, which keeps them alive.
    SingleValues(ScriptContext& context, const ScriptKeySequence& sequence, size_t count, const uint8_t* kinds,
                 const double* numbers, const JSValueRef* values)
        : ElementValues(sequence, count, kinds, numbers), _context(context), _values(values) {}

    // A sequence may read a string several times over.
    id text(JSValueRef value, double) override {
        if (value != _lastText) {
            _lastText = value;
            _lastNative = _context.toNative(value);
        }
        return _lastNative;
    }

private:
    JSValueRef valueAt(size_t index) const override { return _values[index]; }

    ScriptContext& _context;
    const JSValueRef* const _values;
    JSValueRef _lastText = nullptr;
    id _lastNative;
};

/// Those of one of several that came together.
class WaitingValues final : public ElementValues {
public:
    WaitingValues(const ScriptKeySequence& sequence, const uint8_t* kinds, const double* numbers,
                  std::u16string_view texts)
        : ElementValues(sequence, sequence.keys.size(), kinds, numbers), _texts(texts) {}

    id text(JSValueRef, double place) override {
        if (place != _lastPlace) {
            _lastPlace = place;
            const auto number = static_cast<uint64_t>(place);
            _lastNative = id(NSString(_texts.substr(number / textUnit, number % textUnit)));
        }
        return _lastNative;
    }

private:
    JSValueRef valueAt(size_t) const override { return nullptr; }

    const std::u16string_view _texts;
    double _lastPlace = -1;
    id _lastNative;
};

/// Runs one step of the walk; true when it ends. No exception may pass the engine.
template <class Step>
JSValueRef guardStep(JSContextRef script, Step&& step) {
    ScriptElementWalk& walk = *ScriptElementWalk::current;
    try {
        step(walk);
    } catch (...) {
        walk.thrown = std::current_exception();
    }
    return JSValueMakeBoolean(script, walk.thrown || !walk.context.globalContext());
}

/// function (element, count of values read, values…): whether the walk ends.
JSValueRef takeElement(JSContextRef script, JSObjectRef, JSObjectRef, size_t count, const JSValueRef values[],
                       JSValueRef*) {
    return guardStep(script, [&](ScriptElementWalk& walk) {
        if (walk.context.globalContext())
            walk.visitOne(script, count, values);
    });
}

/// function (count of elements, their texts): whether the walk ends. These came before what has ended the page, if it
/// has gone.
JSValueRef takeElements(JSContextRef script, JSObjectRef, JSObjectRef, size_t, const JSValueRef values[], JSValueRef*) {
    return guardStep(script, [&](ScriptElementWalk& walk) {
        walk.visitMany(script, static_cast<size_t>(JSValueToNumber(script, values[0], nullptr)), values[1]);
    });
}

/// function (exception of a getter).
JSValueRef reportException(JSContextRef script, JSObjectRef, JSObjectRef, size_t count, const JSValueRef values[],
                           JSValueRef*) {
    if (count > 0)
        ScriptElementWalk::current->context.reportException(values[0]);
    return JSValueMakeUndefined(script);
}

JSObjectRef makeReader(JSContextRef script, const ScriptKeySequence& sequence, JSObjectRef kindOf, JSObjectRef stop) {
    JSStringRef text = JSStringCreateWithUTF8CString(readerText(sequence).c_str());
    JSObjectRef maker = asObject(script, JSEvaluateScript(script, text, nullptr, nullptr, 1, nullptr));
    JSStringRelease(text);
    if (!maker)
        return nullptr;
    const JSValueRef arguments[] = {JSObjectMakeFunctionWithCallback(script, nullptr, takeElement),
                                    JSObjectMakeFunctionWithCallback(script, nullptr, takeElements),
                                    JSObjectMakeFunctionWithCallback(script, nullptr, reportException), kindOf, stop};
    return asObject(script, JSObjectCallAsFunction(script, maker, nullptr, std::size(arguments), arguments, nullptr));
}

} // namespace

ScriptHelpers::ElementReader& ScriptHelpers::elementReader(const ScriptKeySequence& sequence) {
    ElementReader& reader = _elementReaders[&sequence];
    if (!reader.function) {
        reader.function = makeReader(_context.globalContext(), sequence, shared().kindOf, stopArray());
        if (reader.function)
            _context.keep(reader.function);
    }
    return reader;
}

ScriptElementWalk::ScriptElementWalk(ScriptContext& ofPage, const ScriptKeySequence& keys,
                                     const std::function<void(const id&)>& visitor)
    : context(ofPage), _sequence(keys), _visit(visitor), _outer(std::exchange(current, this)) {}

ScriptElementWalk::~ScriptElementWalk() {
    current = _outer;
}

void ScriptElementWalk::run(JSObjectRef array, uint64_t length) {
    const JSContextRef script = context.globalContext();
    const uint64_t room = _sequence.isAll && length > 1 ? std::min(length, maximumRoom) : 0;
    call(context.helpers().elementReader(_sequence).function, array, length,
         makeArrays(script, _sequence.keys.size() * std::max<uint64_t>(room, 1)), static_cast<double>(room));
}

// Its arrays are used again and again, but not for an object that is read while another one is.
void ScriptElementWalk::runAlone(JSObjectRef element) {
    const JSContextRef script = context.globalContext();
    ScriptHelpers::ElementReader& reader = context.helpers().elementReader(_sequence);
    if (!reader.function) // the page's stack is used up
        return;
    if (reader.isReading) {
        call(reader.function, element, 1, makeArrays(script, _sequence.keys.size()), alone);
        return;
    }
    if (!reader.arrays.kindArray) {
        const Arrays made = makeArrays(script, _sequence.keys.size());
        context.keep(made.kindArray);
        context.keep(made.numberArray);
        reader.arrays = made;
    }
    reader.isReading = true;
    call(reader.function, element, 1, reader.arrays, alone);
    reader.isReading = false;
}

ScriptElementWalk::Arrays ScriptElementWalk::makeArrays(JSContextRef script, size_t values) {
    Arrays made;
    made.kindArray = JSObjectMakeTypedArray(script, kJSTypedArrayTypeUint8Array, values, nullptr);
    made.numberArray = JSObjectMakeTypedArray(script, kJSTypedArrayTypeFloat64Array, values, nullptr);
    if (!made.kindArray || !made.numberArray)
        throw std::bad_alloc();
    made.kinds = {static_cast<uint8_t*>(JSObjectGetTypedArrayBytesPtr(script, made.kindArray, nullptr)), values};
    made.numbers = static_cast<const double*>(JSObjectGetTypedArrayBytesPtr(script, made.numberArray, nullptr));
    return made;
}

// The collector finds the arrays among the arguments, on this thread's stack.
void ScriptElementWalk::call(JSObjectRef reader, JSObjectRef object, uint64_t length, const Arrays& arrays,
                             double room) {
    const JSContextRef script = context.globalContext();
    if (!reader)
        throw std::bad_alloc();
    _kinds = arrays.kinds;
    _numbers = arrays.numbers;
    const JSValueRef arguments[] = {object, JSValueMakeNumber(script, static_cast<double>(length)), arrays.kindArray,
                                    arrays.numberArray, JSValueMakeNumber(script, room)};
    JSValueRef exception = nullptr;
    JSObjectCallAsFunction(script, reader, nullptr, std::size(arguments), arguments, &exception);
    if (exception) // the engine's own: its stack is used up
        context.reportException(exception);
}

void ScriptElementWalk::visitOne(JSContextRef script, size_t count, const JSValueRef values[]) {
    const auto read = static_cast<size_t>(JSValueToNumber(script, values[1], nullptr));
    SingleValues ahead(context, _sequence, std::min(read, count - 2), _kinds.data(), _numbers, values + 2);
    context.visitElement(values[0], ahead, _visit);
    std::ranges::fill(_kinds.first(_sequence.keys.size()), Nothing);
}

void ScriptElementWalk::visitMany(JSContextRef script, size_t count, JSValueRef texts) {
    const std::unique_ptr<OpaqueJSString, decltype(&JSStringRelease)> joined(
        JSValueToStringCopy(script, texts, nullptr), JSStringRelease);
    if (!joined)
        throw std::bad_alloc();
    const std::u16string_view units(reinterpret_cast<const char16_t*>(JSStringGetCharactersPtr(joined.get())),
                                    JSStringGetLength(joined.get()));
    const std::shared_ptr<WebScriptObject> element(new WebScriptObject(context.shared_from_this(), nullptr));
    const id native(element);
    const bool wasAlive = context.isAlive();
    for (size_t i = 0; i < count && context.isAlive() == wasAlive; ++i) {
        const size_t first = i * _sequence.keys.size();
        WaitingValues ahead(_sequence, &_kinds[first], _numbers + first, units);
        const AnsweringAhead answering(element, ahead);
        _visit(native);
    }
    std::ranges::fill(_kinds, Nothing); // that of an element which was not simple after all, too
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

void visitScriptObject(WebScriptObject& object, const ScriptKeySequence& sequence,
                       const std::function<void(const id&)>& visit) {
    const auto context = object.context();
    const id native(std::static_pointer_cast<WebScriptObject>(object.shared_from_this()));
    bool isVisited = false;
    const std::function<void(const id&)> visitOnce = [&](const id& element) {
        isVisited = true;
        visit(element);
    };
    if (JSObjectRef element = object.scriptObject()) {
        ScriptElementWalk walk(*context, sequence, visitOnce);
        walk.runAlone(element);
        if (walk.thrown)
            std::rethrow_exception(walk.thrown);
    }
    if (!isVisited)
        visit(native);
}

} // namespace veyra
