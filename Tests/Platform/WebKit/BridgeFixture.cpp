#include "Tests/Platform/WebKit/BridgeFixture.h"

namespace veyra {

namespace {

std::shared_ptr<Probe> currentProbe;
JSObjectRef currentProbeObject = nullptr;

SelfSharingObject* resolve(JSContextRef, JSObjectRef object) {
    return object == currentProbeObject ? currentProbe.get() : nullptr;
}

bool isOneOf(const char* name, std::initializer_list<const char*> names) {
    for (const char* known : names)
        if (std::string(known) == name)
            return true;
    return false;
}

// A console whose errors the script can read back.
constexpr const char* console =
    "globalThis.errors = []; globalThis.console = { error(e) { errors.push(String(e)); } };";

} // namespace

Class Pair::classObject() {
    static Class cls = new ClassObject(
        "Pair", NSObject::classObject(),
        {bindMethod<&Pair::first>("first"), bindMethod<&Pair::setFirst>("setFirst:"),
         bindMethod<&Pair::second>("second"), bindMethod<&Pair::setSecond>("setSecond:")},
        WebScripting{.isKeyExcludedFromWebScript = nothingExcluded,
                     .makeValueObject = []() -> std::shared_ptr<NSObject> { return std::make_shared<Pair>(); }});
    return cls;
}

Class Probe::classObject() {
    static Class cls =
        new ClassObject("Probe", NSObject::classObject(),
                        {bindMethod<&Probe::value>("value"), bindMethod<&Probe::setValue>("setValue:"),
                         bindMethod<&Probe::flag>("flag"), bindMethod<&Probe::setFlag>("setFlag:"),
                         bindMethod<&Probe::echo>("echo:"), bindMethod<&Probe::nothing>("nothing"),
                         bindMethod<&Probe::join>("join:flag:"), bindMethod<&Probe::freshPair>("freshPair"),
                         bindMethod<&Probe::samePair>("samePair"), bindMethod<&Probe::raise>("raise:"),
                         bindMethod<&Probe::outOfMemory>("outOfMemory"), bindMethod<&Probe::throwTwice>("throwTwice"),
                         bindMethod<&Probe::call>("call:"), bindMethod<&Probe::secret>("secret")},
                        WebScripting{nullptr,
                                     [](const char* key) {
                                         return !isOneOf(key, {"value", "flag"});
                                     },
                                     [](SEL selector) -> std::optional<NSString> {
                                         const std::string& name = selector.name();
                                         return NSString(std::string_view(name).substr(0, name.find(':')));
                                     },
                                     [](SEL selector) {
                                         return !isOneOf(selector.name().c_str(),
                                                         {"echo:", "nothing", "join:flag:", "freshPair", "samePair",
                                                          "raise:", "outOfMemory", "throwTwice", "call:"});
                                     }});
    return cls;
}

Bridge::Bridge() : global(JSGlobalContextCreate(nullptr)), probe(std::make_shared<Probe>()) {
    static auto* queue = new DispatchQueue(g_main_context_default(), "web");
    setWebThread(queue);
    g_main_context_acquire(g_main_context_default()); // this thread is the web thread, also between iterations
    evaluate(console);
    context = ScriptContext::of(global);
    JSObjectRef target = JSObjectMake(global, nullptr, nullptr);
    JSStringRef name = JSStringCreateWithUTF8CString("probe");
    JSObjectSetProperty(global, JSContextGetGlobalObject(global), name, target, kJSPropertyAttributeNone, nullptr);
    JSStringRelease(name);
    currentProbe = probe;
    currentProbeObject = target;
    exposeClass(*context, target, Probe::classObject(), {"value", "flag", "secret"}, resolve);
}

Bridge::~Bridge() {
    // What a test has made of absent keys ends with it.
    class_replaceMethod(WebScriptObject::classObject(),
                        "valueForUndefinedKey:", NSObject::classObject()->implementation("valueForUndefinedKey:"),
                        "@@:@");
    currentProbe = nullptr;
    probe = nullptr;
    if (context)
        context->invalidate();
    context = nullptr;
    JSGlobalContextRelease(global);
    drain();
    g_main_context_release(g_main_context_default());
}

JSValueRef Bridge::evaluate(const std::string& script, JSValueRef* exception) {
    JSStringRef text = JSStringCreateWithUTF8CString(script.c_str());
    JSValueRef thrown = nullptr;
    const JSValueRef result = JSEvaluateScript(global, text, nullptr, nullptr, 1, &thrown);
    JSStringRelease(text);
    if (exception)
        *exception = thrown;
    else
        EXPECT_EQ(thrown, nullptr) << script;
    return result;
}

std::string Bridge::run(const std::string& script) {
    JSValueRef exception = nullptr;
    const JSValueRef result = evaluate(script, &exception);
    JSStringRef text = JSValueToStringCopy(global, exception ? exception : result, nullptr);
    const std::string utf8 = ScriptContext::toString(text).utf8();
    JSStringRelease(text);
    return exception ? "threw: " + utf8 : utf8;
}

void Bridge::drain() {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

void Bridge::collect() {
    drain();
    JSSynchronousGarbageCollectForDebugging(global);
    drain();
}

} // namespace veyra
