// Small functions of compiled script that do in one call what takes the engine's C interface many: reading several keys
// of an object, and making a value object with its attributes. They do exactly what the single steps would, in the same
// order, and use nothing that a page can change. Numbers cross in a typed array of the context's own.
// Web thread only.
#pragma once

#include "Platform/Foundation/id.h"

#include <JavaScriptCore/JavaScript.h>

#include <array>
#include <memory>
#include <unordered_map>
#include <vector>

namespace veyra {

class ScriptContext;
class WebScriptObject;
struct ScriptKeySequence;

/// The keys that a native method reads of an argument one after the other, as long as each is a number. Made once for
/// each such method, as a function-local static that is never destroyed.
class ScriptKeyPlan {
public:
    static constexpr size_t maximumKeys = 8;
    /// At most `maximumKeys`, in the order in which they are read; a key may come twice. Each is a plain ASCII name.
    explicit ScriptKeyPlan(std::vector<NSString> keys) : _keys(std::move(keys)) {}
    const std::vector<NSString>& keys() const { return _keys; }

private:
    const std::vector<NSString> _keys;
};

/// What has been read of a script object ahead, for WebScriptObject::valueForKey.
class ScriptValuesAhead {
public:
    enum class Kind { Nothing, Nil, Number, Boolean, Value, Exception };
    /// What the next read gave (numbers, and booleans as 0 and 1, in `number`, values and exceptions in `value`);
    /// false when the key is another one or nothing is left: then it has to be read.
    virtual bool next(const NSString& key, Kind& kind, double& number, JSValueRef& value) = 0;

protected:
    ~ScriptValuesAhead() = default;
};

/// Reads the keys of a plan from a script object when it is made, up to the first that is no number, and answers
/// WebScriptObject::valueForKey from what was read, in the plan's order, while it lives. On the stack of one call.
class ScriptReadAhead final : public ScriptValuesAhead {
public:
    /// Does nothing for what is no live script object.
    ScriptReadAhead(const id& object, const ScriptKeyPlan& plan);
    ~ScriptReadAhead();
    ScriptReadAhead(const ScriptReadAhead&) = delete;
    ScriptReadAhead& operator=(const ScriptReadAhead&) = delete;

private:
    bool next(const NSString& key, Kind& kind, double& number, JSValueRef& value) override;
    void take(JSContextRef context, JSValueRef answer, const double* numbers);

    std::shared_ptr<WebScriptObject> _object;
    ScriptValuesAhead* _outer = nullptr; // of the same object
    const ScriptKeyPlan& _plan;
    std::array<double, ScriptKeyPlan::maximumKeys> _numbers;
    size_t _numberCount = 0;
    Kind _lastKind = Kind::Number; // of what came after the numbers, if anything did
    JSValueRef _last = nullptr;    // the collector finds it on the stack
    size_t _next = 0;
};

/// The helpers of one context, made when they are first used. Owned by the context, which keeps their functions alive.
class ScriptHelpers {
public:
    explicit ScriptHelpers(ScriptContext& context) : _context(context) {}

    struct Helper {
        JSObjectRef function = nullptr;
        double* numbers = nullptr; // of the typed array
    };
    /// function (object): the count of the plan's keys, all numbers, which are in the typed array; or an array: whether
    /// the last read threw, what it gave or threw, and the numbers before it.
    const Helper& reader(const ScriptKeyPlan& plan);
    /// function (): a new object of that prototype whose own properties are the numbers in the typed array, in order.
    Helper makeMaker(const std::vector<NSString>& names, JSObjectRef prototype);

    struct ElementReader {
        JSObjectRef function = nullptr;
        const uint8_t* kinds = nullptr;
        double* numbers = nullptr;
    };
    /// See ScriptElementReader.cpp. Without a function for want of memory.
    const ElementReader& elementReader(const ScriptKeySequence& sequence);

    /// The page has gone, perhaps by what a read of it ran: no running reader reads another key.
    void stopReads();

private:
    friend class ScriptReadAhead;
    friend class ScriptElementWalk;
    Helper make(const std::string& source, size_t count, JSValueRef prototype = nullptr);

    ScriptContext& _context;
    std::unordered_map<const ScriptKeyPlan*, Helper> _readers;
    std::unordered_map<const ScriptKeySequence*, ElementReader> _elementReaders;
    std::vector<double*> _runningReads; // where the readers that run just now look
};

} // namespace veyra
