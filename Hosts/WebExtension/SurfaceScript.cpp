#include "Hosts/WebExtension/SurfaceScript.h"

#include "Hosts/WebExtension/ScriptSupport.h"
#include "Hosts/WebExtension/Statistics.h"

#include <algorithm>

namespace veyra {

namespace {

JSValueRef makeString(JSContextRef context, const std::string& utf8) {
    JSStringRef characters = JSStringCreateWithUTF8CString(utf8.c_str());
    const JSValueRef made = JSValueMakeString(context, characters);
    JSStringRelease(characters);
    return made;
}

} // namespace

void SurfaceScript::call(const char* name) {
    callMethod(_context, _surface, name, {});
}

void SurfaceScript::requestFrame() {
    ++frameStatistics().animationFramesRequested;
    call("requestFrame");
}

void SurfaceScript::setCaption(const UICaption& caption) {
    const auto number = [this](double value) { return JSValueMakeNumber(_context, value); };
    // On the stack: safe from the collector.
    const JSValueRef text = makeString(_context, caption.text), url = makeString(_context, caption.url);
    const CGRect& frame = caption.frame;
    callMethod(_context, _surface, "setCaption",
               {text, url, number(frame.origin.x), number(frame.origin.y), number(frame.size.width),
                number(frame.size.height)});
}

// One string: the status, then an element a line, its action's number in front of its label. Line feeds in labels have
// become spaces.
void SurfaceScript::setAccessibilityState(const UIAccessibilityState& state) {
    const auto line = [](std::string text) {
        std::replace(text.begin(), text.end(), '\n', ' ');
        return text;
    };
    std::string lines = line(state.status);
    for (const auto& element : state.elements)
        lines += "\n" + std::to_string(static_cast<int>(element.action)) + line(element.label);
    callMethod(_context, _surface, "setAccessibilityState", {makeString(_context, lines)});
}

void SurfaceScript::keepAlive(JSObjectRef object) {
    setProperty(_context, _surface, "wrapper", object);
}

} // namespace veyra
