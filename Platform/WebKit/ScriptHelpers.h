// Small functions of compiled script that do in one call what takes the engine's C interface many: reading several keys
// of an object, making a value object with its attributes, and the ordinary calls of numeric methods. They do exactly
// what the single steps would, in the same order, and use nothing that a page can change. Numbers cross in typed arrays
// of the context's own.
// Web thread only.
#pragma once

#include "Platform/Foundation/Runtime.h"

#include <JavaScriptCore/JavaScript.h>

#include <array>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace veyra {

class ScriptContext;
struct ScriptKeySequence;

/// What has been read of a script object ahead, for WebScriptObject::valueForKey.
class ScriptValuesAhead {
public:
    enum class Kind { Nothing, Nil, Number, Boolean, Text, Value, Exception };
    /// What the next read gave (numbers, and booleans as 0 and 1, in `number`, what else there is in `value`); false
    /// when the key is another one or nothing is left: then it has to be read.
    virtual bool next(const NSString& key, Kind& kind, double& number, JSValueRef& value) = 0;
    /// A string that `next` gave as Text with this value and number.
    virtual id text(JSValueRef, double) { return id(); }

protected:
    ~ScriptValuesAhead() = default;
};

/// How the reading of a numeric function's argument has ended: with the numbers before, with something that is no
/// number, or with an exception.
enum class ScriptReadEnd { WithNumbers, WithValue, WithException };

/// The helpers of one context, made when they are first used. Owned by the context, which keeps their functions alive.
class ScriptHelpers {
public:
    explicit ScriptHelpers(ScriptContext& context) : _context(context) {}

    /// Makes value objects of one kind.
    struct Maker {
        JSObjectRef function = nullptr; ///< (): a new object whose own properties are the numbers, in order
        JSObjectRef prototype = nullptr;
        double* numbers = nullptr; ///< of a typed array that the function keeps
    };
    Maker makeMaker(const std::vector<NSString>& names, Class kind);

    /// A script function of that name for a numeric method. It reads the keys of its argument as long as they are
    /// numbers. When all are, it puts the argument's attributes into `arguments()`, calls compute(this) and, when that
    /// returns undefined, makes the result with the function that maker() returns. Else, and when native objects have
    /// left meanwhile, it returns proceed(this, argument, count of numbers read, ScriptReadEnd, what was read last,
    /// count of those objects, numbers…).
    JSObjectRef makeNumericFunction(const NSString& name, const WebNumericMethod& method, JSObjectRef compute,
                                    JSObjectRef proceed, JSObjectRef maker);
    static constexpr size_t maximumArguments = 4;
    /// The attributes that the numeric function in question has read.
    const double* arguments() { return shared().arguments; }

    /// What reads elements; see ScriptElementReader.cpp.
    struct ElementReader {
        /// Typed arrays for the values of elements, and what is in them.
        struct Arrays {
            JSObjectRef kindArray = nullptr, numberArray = nullptr;
            std::span<uint8_t> kinds;
            const double* numbers = nullptr;
        };
        JSObjectRef function = nullptr; ///< null for want of memory
        Arrays arrays;                  ///< for an object that is read alone; made when one is
        bool isReading = false;         ///< such an object
    };
    ElementReader& elementReader(const ScriptKeySequence& sequence);

    /// An array of numbers. When the first is not 0, the page is not to be read, and a helper that is reading stops.
    /// The second counts the native objects that have left their script objects.
    JSObjectRef stopArray() { return shared().stopArray; }
    /// The page is hidden, or shown again.
    void setStopped(bool stopped);
    /// A native object has left its script object, perhaps by what a read of a page ran.
    void noteDeparture();
    /// The page has gone, perhaps by what a read of it ran.
    void end();

private:
    /// What the helpers of the context have in common.
    struct Shared {
        JSObjectRef valueClass = nullptr; // from which the classes of value objects inherit
        JSObjectRef kindOf = nullptr;     // (object): the kind of one of our value objects, else 0
        JSObjectRef argumentArray = nullptr;
        JSObjectRef stopArray = nullptr; // protected: it is written when the page's own objects may be gone
        std::shared_ptr<OpaqueJSContext> stopOwner;
        double *arguments = nullptr, *stop = nullptr;
    };
    const Shared& shared();
    // These throw when the engine cannot: a page may have left no stack or memory.
    JSObjectRef evaluate(const std::string& source);
    JSObjectRef call(JSObjectRef function, std::initializer_list<JSValueRef> arguments);
    JSObjectRef made(JSValueRef value) const;
    static JSObjectRef makeArray(JSContextRef script, size_t count, double*& numbers);

    ScriptContext& _context;
    Shared _shared;
    std::unordered_map<const ScriptKeySequence*, ElementReader> _elementReaders;
};

} // namespace veyra
