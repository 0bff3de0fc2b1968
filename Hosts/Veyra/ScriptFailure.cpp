#include "Hosts/Veyra/ScriptFailure.h"

#include "Hosts/Veyra/ScriptFunction.h"

namespace veyra {

namespace {

std::string placeOf(JSContextRef context, JSValueRef exception, const std::string& file) {
    if (!JSValueIsObject(context, exception))
        return file;
    JSObjectRef error = JSValueToObject(context, exception, nullptr);
    const JSValueRef source = scriptProperty(context, error, "sourceURL");
    std::string place = JSValueIsString(context, source) ? scriptText(context, source) : file;
    for (const char* name : {"line", "column"}) {
        const JSValueRef number = scriptProperty(context, error, name);
        if (JSValueIsNumber(context, number))
            place += ":" + scriptText(context, number);
    }
    return place;
}

} // namespace

std::string describeUncaught(JSContextRef context, JSValueRef exception, const std::string& file) {
    return placeOf(context, exception, file) + ": uncaught exception: " + scriptText(context, exception);
}

} // namespace veyra
