#include "Platform/WebKit/ScriptHelpers.h"

#include "Platform/WebKit/WebScriptObject.h"

#include <algorithm>
#include <utility>

namespace veyra {

namespace {

std::string property(const std::string& object, const NSString& name) {
    return object + "[\"" + name.utf8() + "\"]";
}

std::string variable(size_t i) {
    return "v" + std::to_string(i);
}

// The values are complete before any goes into the typed array: reading may run script that uses the same helper. The
// number behind them says that such a script has ended the page: nothing more is read then.
std::string readerSource(const std::vector<NSString>& keys) {
    std::string declarations, body, stores, all;
    for (size_t i = 0; i < keys.size(); ++i) {
        declarations += (i ? ", " : "let ") + variable(i);
        body += "if (typeof (" + variable(i) + " = " + property("o", keys[i]) + ") !== 'number' || numbers[" +
                std::to_string(keys.size()) + "] !== 0) return [false, " + variable(i) + all + "];\n";
        stores += "numbers[" + std::to_string(i) + "] = " + variable(i) + ";\n";
        all += ", " + variable(i);
    }
    return "(function (numbers) { 'use strict'; return function (o) { " + declarations + ";\ntry {\n" + body +
           "} catch (error) { return [true, error" + all + "]; }\n" + stores + "return " + std::to_string(keys.size()) +
           "; }; })";
}

std::string makerSource(const std::vector<NSString>& names) {
    std::string properties = "__proto__: prototype";
    for (size_t i = 0; i < names.size(); ++i)
        properties += ", \"" + names[i].utf8() + "\": numbers[" + std::to_string(i) + "]";
    return "(function (numbers, prototype) { return function () { return { " + properties + " }; }; })";
}

} // namespace

ScriptHelpers::Helper ScriptHelpers::make(const std::string& source, size_t count, JSValueRef prototype) {
    const JSContextRef context = _context.globalContext();
    JSStringRef text = JSStringCreateWithUTF8CString(source.c_str());
    JSObjectRef factory =
        JSValueToObject(context, JSEvaluateScript(context, text, nullptr, nullptr, 0, nullptr), nullptr);
    JSStringRelease(text);
    JSObjectRef array = JSObjectMakeTypedArray(context, kJSTypedArrayTypeFloat64Array, count, nullptr);
    const JSValueRef arguments[] = {array, prototype};
    Helper helper;
    helper.function = JSValueToObject(
        context, JSObjectCallAsFunction(context, factory, nullptr, prototype ? 2 : 1, arguments, nullptr), nullptr);
    helper.numbers = static_cast<double*>(JSObjectGetTypedArrayBytesPtr(context, array, nullptr));
    _context.keep(helper.function); // which keeps the array
    return helper;
}

const ScriptHelpers::Helper& ScriptHelpers::reader(const ScriptKeyPlan& plan) {
    const auto found = _readers.find(&plan);
    if (found != _readers.end())
        return found->second;
    return _readers[&plan] = make(readerSource(plan.keys()), plan.keys().size() + 1);
}

ScriptHelpers::Helper ScriptHelpers::makeMaker(const std::vector<NSString>& names, JSObjectRef prototype) {
    return make(makerSource(names), names.size(), prototype);
}

void ScriptHelpers::stopReads() {
    for (double* mustStop : _runningReads)
        *mustStop = 1;
}

ScriptReadAhead::ScriptReadAhead(const id& object, const ScriptKeyPlan& plan) : _plan(plan) {
    auto script = object.as<WebScriptObject>();
    if (!script || !script->scriptObject())
        return;
    ScriptContext& context = *script->_context;
    const ScriptHelpers::Helper& helper = context.helpers().reader(plan);
    double& mustStop = helper.numbers[plan.keys().size()];
    mustStop = 0;
    const JSValueRef argument = script->_object;
    JSValueRef exception = nullptr;
    context.helpers()._runningReads.push_back(&mustStop);
    const JSValueRef answer =
        JSObjectCallAsFunction(context.globalContext(), helper.function, nullptr, 1, &argument, &exception);
    context.helpers()._runningReads.pop_back();
    if (exception || !script->scriptObject())
        return; // out of stack, or the page has gone: the single reads see to it
    take(context.globalContext(), answer, helper.numbers);
    _object = std::move(script);
    _outer = std::exchange(_object->_readAhead, static_cast<ScriptValuesAhead*>(this));
}

ScriptReadAhead::~ScriptReadAhead() {
    if (_object)
        _object->_readAhead = _outer;
}

void ScriptReadAhead::take(JSContextRef context, JSValueRef answer, const double* numbers) {
    if (JSValueIsNumber(context, answer)) {
        _numberCount = _plan.keys().size();
        std::copy_n(numbers, _numberCount, _numbers.begin());
        return;
    }
    JSObjectRef array = JSValueToObject(context, answer, nullptr);
    const auto element = [&](unsigned i) { return JSObjectGetPropertyAtIndex(context, array, i, nullptr); };
    _lastKind = JSValueToBoolean(context, element(0)) ? Kind::Exception : Kind::Value;
    _last = element(1);
    // The numbers end with the first that was not read.
    for (unsigned i = 0; i < _numbers.size(); ++i) {
        const JSValueRef value = element(i + 2);
        if (!JSValueIsNumber(context, value))
            return;
        _numbers[_numberCount++] = JSValueToNumber(context, value, nullptr);
    }
}

bool ScriptReadAhead::next(const NSString& key, Kind& kind, double& number, JSValueRef& value) {
    if (_next >= _plan.keys().size() || !(_plan.keys()[_next] == key))
        return false;
    if (_next < _numberCount) {
        kind = Kind::Number;
        number = _numbers[_next++];
        return true;
    }
    if (!_last)
        return false;
    kind = _lastKind;
    value = std::exchange(_last, nullptr);
    _next = _plan.keys().size(); // what follows is read singly
    return true;
}

} // namespace veyra
