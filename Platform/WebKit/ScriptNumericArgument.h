// What a numeric function has read of its argument, for the method that has to deal with it after all. Web thread, on
// the stack of one call.
#pragma once

#include "Platform/WebKit/ScriptHelpers.h"

#include <span>

namespace veyra {

class ScriptNumericArgument final : public ScriptValuesAhead {
public:
    /// `keys` in the order in which they are read. `numbers` and `last` are values of the running call, which keeps
    /// them alive.
    ScriptNumericArgument(JSContextRef script, const std::vector<NSString>& keys, std::span<const JSValueRef> numbers,
                          ScriptReadEnd end, JSValueRef last)
        : _script(script), _keys(keys), _numbers(numbers), _end(end), _last(last) {}

    bool next(const NSString& key, Kind& kind, double& number, JSValueRef& value) override {
        if (_next >= _keys.size() || !(_keys[_next] == key))
            return false;
        if (_next < _numbers.size()) {
            kind = Kind::Number;
            number = JSValueToNumber(_script, _numbers[_next++], nullptr);
            return true;
        }
        _next = _keys.size(); // what follows is read singly
        kind = _end == ScriptReadEnd::WithException ? Kind::Exception : Kind::Value;
        value = _last;
        return _end != ScriptReadEnd::WithNumbers;
    }

private:
    JSContextRef const _script;
    const std::vector<NSString>& _keys;
    const std::span<const JSValueRef> _numbers;
    const ScriptReadEnd _end;
    JSValueRef const _last;
    size_t _next = 0;
};

} // namespace veyra
