#include "Hosts/Veyra/ScriptConsole.h"

#include "Hosts/Veyra/ScriptFunction.h"

#include <cstdio>

namespace veyra {

namespace {

ScriptFunction printer(JSContextRef context, JSObjectRef convert, std::FILE* stream) {
    return [context, convert, stream](std::span<const JSValueRef> arguments, JSValueRef* exception) -> JSValueRef {
        std::string line;
        for (const JSValueRef& argument : arguments) {
            // The function `String` takes symbols too.
            const JSValueRef text = JSObjectCallAsFunction(context, convert, nullptr, 1, &argument, exception);
            if (!text)
                return nullptr;
            line += (&argument == arguments.data() ? "" : " ") + scriptText(context, text);
        }
        line += '\n';
        std::fwrite(line.data(), 1, line.size(), stream);
        std::fflush(stream);
        return nullptr;
    };
}

} // namespace

void installScriptConsole(JSContextRef context) {
    JSObjectRef global = JSContextGetGlobalObject(context);
    JSObjectRef convert = JSValueToObject(context, scriptProperty(context, global, "String"), nullptr);
    JSValueProtect(context, convert); // as long as the context: a script may replace the global
    JSObjectRef console = JSObjectMake(context, nullptr, nullptr);
    const auto add = [&](const char* name, std::FILE* stream) {
        setScriptProperty(context, console, name, makeScriptFunction(context, printer(context, convert, stream)));
    };
    add("log", stdout);
    add("info", stdout);
    add("debug", stdout);
    add("warn", stderr);
    add("error", stderr);
    setScriptProperty(context, global, "console", console);
}

} // namespace veyra
