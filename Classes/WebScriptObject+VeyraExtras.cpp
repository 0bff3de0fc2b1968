#include "Classes/WebScriptObject+VeyraExtras.h"

#include "Platform/Foundation/NSAssertionHandler.h"
#include "Platform/Foundation/NSLog.h"
#include "Platform/WebKit/WebThread.h"

#include <algorithm>

namespace veyra {

bool VeyraValidateWebScriptObject(const id& object, Class primaryClass, const id& caller,
                                  const std::vector<NSString>& requiredKeys) {
    if (object.isNil()) {
        WebScriptObject::throwException(NSStringWithFormat("Null object passed to '%@'", {caller}));
        return false;
    }
    if (primaryClass == WebScriptObject::classObject())
        NSAssertionHandler::currentHandler().handleFailureInFunction(
            "BOOL VeyraValidateWebScriptObject(WebScriptObject *, Class, NSString *, ...)",
            "WebScriptObject (VeyraExtras)", 18,
            "WebScriptObject cannot be specified as PrimaryClass for validating webscript input");
    if (primaryClass && object.object() && object.object()->isKindOfClass(primaryClass))
        return true;
    const auto script = object.as<WebScriptObject>();
    if (!script) {
        WebScriptObject::throwException(NSStringWithFormat("Invalid object passed to '%@'", {caller}));
        return false;
    }
    NSArray missing;
    for (const NSString& key : requiredKeys)
        if (script->valueForKey(key).isNil())
            missing.push_back(key);
    if (missing.empty())
        return true;
    WebScriptObject::throwException(
        NSStringWithFormat("Object passed to '%@' does not contain keys %@", {caller, id(std::move(missing))}));
    return false;
}

double geometryValueForKey(NSObject& object, const NSString& key) {
    const id value = object.valueForKey(key);
    return value.isNumber() || value.isString() ? value.doubleValue() : 0;
}

namespace {

/// How far an array says that it reaches. Script arrays end at 2^32 - 1 elements; indexes are 32 bits wide.
uint64_t elementCount(const id& array) {
    const id length = array.valueForKey("length");
    return length.isNumber() ? std::min<uint64_t>(length.unsignedIntegerValue(), UINT32_MAX) : 0;
}

} // namespace

void forEachElement(const id& array, const std::function<void(const id&)>& visit) {
    const auto script = array.as<WebScriptObject>();
    const uint64_t count = elementCount(array);
    for (uint64_t index = 0; script && index < count && script->scriptObject(); ++index)
        visit(script->webScriptValueAtIndex(static_cast<unsigned>(index)));
}

void forEachElement(const id& array, const ScriptKeySequence& keys, const std::function<void(const id&)>& visit) {
    const auto script = array.as<WebScriptObject>();
    const uint64_t count = elementCount(array);
    if (script && count > 0)
        visitScriptElements(*script, count, keys, visit);
}

void withKeysReadAhead(const id& value, const ScriptKeySequence& keys, const std::function<void(const id&)>& visit) {
    if (const auto script = value.as<WebScriptObject>())
        visitScriptObject(*script, keys, visit);
    else
        visit(value);
}

void _veyra_webThreadCallWebScriptMethod(const id& listener, const NSString& name, NSArray arguments) {
    auto script = listener.as<WebScriptObject>();
    if (!script)
        return;
    WebThreadRun([script = std::move(script), name, arguments = std::move(arguments)] {
        script->callWebScriptMethod(name, arguments);
    });
}

} // namespace veyra
