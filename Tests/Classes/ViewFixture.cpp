#include "Tests/Classes/ViewFixture.h"

#include "Platform/WebKit/WebScriptExposure.h"
#include "Platform/WebKit/WebThread.h"

#include <algorithm>

// Exported by the engine for debugging; the public call only asks for a collection.
extern "C" void JSSynchronousGarbageCollectForDebugging(JSContextRef);

namespace veyra {

namespace {

constexpr const char* console =
    "globalThis.errors = []; globalThis.console = { error(e) { errors.push(String(e)); } };";

constexpr const char* recorder = R"(
    globalThis.events = [];
    map.listener = new Proxy({}, { get: (target, name) => (...values) => {
        events.push([name, ...values.map(value => JSON.stringify(value))].join(' '));
    } });
)";

GMainContext* webContext() {
    return g_main_context_default();
}

GMainContext* mainContext() {
    static GMainContext* const context = g_main_context_new();
    return context;
}

void installQueues() {
    [[maybe_unused]] static const bool isInstalled = [] {
        setMainQueue(new DispatchQueue(mainContext(), "main"));
        setWebThread(new DispatchQueue(webContext(), "web"));
        return true;
    }();
}

// The test's thread is the main queue while one of these lives, and no longer the web thread.
class MainRole {
public:
    MainRole() {
        g_main_context_release(webContext());
        g_main_context_push_thread_default(mainContext());
    }
    ~MainRole() {
        g_main_context_pop_thread_default(mainContext());
        g_main_context_acquire(webContext());
    }
    MainRole(const MainRole&) = delete;
    MainRole& operator=(const MainRole&) = delete;
};

// A queue may rest for a moment between its blocks: the block queued here tells when its predecessors have run. They
// may have queued others.
void runQueue(DispatchQueue& queue) {
    do {
        bool done = false;
        queue.async([&] { done = true; });
        while (!done)
            g_main_context_iteration(queue.context(), TRUE);
        while (g_main_context_iteration(queue.context(), FALSE)) {
        }
    } while (queue.waitingBlocks() > 0);
}

JSClassRef nativeFunctionClass() {
    static JSClassRef cls = [] {
        JSClassDefinition definition = kJSClassDefinitionEmpty;
        definition.callAsFunction = [](JSContextRef script, JSObjectRef function, JSObjectRef, size_t,
                                       const JSValueRef[], JSValueRef*) {
            (*static_cast<Block*>(JSObjectGetPrivate(function)))();
            return JSValueMakeUndefined(script);
        };
        return JSClassCreate(&definition);
    }();
    return cls;
}

} // namespace

std::vector<ViewFixture::ShownMap> ViewFixture::_maps;

ViewFixture::ViewFixture() : global(JSGlobalContextCreate(nullptr)) {
    installQueues();
    g_main_context_acquire(webContext());
    evaluate(console);
    context = ScriptContext::of(global);
    frame = std::make_shared<WebFrame>(context, std::make_shared<WebView>(nullptr));
}

ViewFixture::~ViewFixture() {
    g_main_context_release(webContext());
}

void ViewFixture::TearDown() {
    for (const ShownMap& map : _maps) {
        map.instance->stop();
        JSValueUnprotect(global, map.object);
    }
    _maps.clear();
    context->invalidate();
    frame = nullptr;
    context = nullptr;
    settle();
    JSGlobalContextRelease(global);
    settle();
    EXPECT_EQ(VeyraView::liveViews(), 0u);
    EXPECT_EQ(ScriptContext::liveContexts(), 0u);
}

void ViewFixture::onMain(const Block& block) {
    const MainRole role;
    block();
}

void ViewFixture::runMain() {
    const MainRole role;
    runQueue(dispatch_get_main_queue());
}

bool ViewFixture::runMainUntil(const std::function<bool()>& condition) {
    const MainRole role;
    for (int tries = 0; tries < 10000; ++tries) {
        if (condition())
            return true;
        if (!g_main_context_iteration(mainContext(), FALSE))
            g_usleep(1000);
    }
    return false;
}

void ViewFixture::runWeb() {
    runQueue(webThread());
}

void ViewFixture::settle() {
    for (int turn = 0; turn < 3; ++turn) {
        runMain();
        runWeb();
    }
}

JSValueRef ViewFixture::evaluate(const std::string& script, JSValueRef* exception) {
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

std::string ViewFixture::run(const std::string& script) {
    JSValueRef exception = nullptr;
    const JSValueRef result = evaluate(script, &exception);
    JSStringRef text = JSValueToStringCopy(global, exception ? exception : result, nullptr);
    if (!text)
        return "no text";
    const std::string utf8 = ScriptContext::toString(text).utf8();
    JSStringRelease(text);
    return exception ? "threw: " + utf8 : utf8;
}

JSObjectRef ViewFixture::setGlobal(const std::string& name, JSObjectRef object) {
    JSStringRef key = JSStringCreateWithUTF8CString(name.c_str());
    JSObjectSetProperty(global, JSContextGetGlobalObject(global), key, object, kJSPropertyAttributeNone, nullptr);
    JSStringRelease(key);
    return object;
}

void ViewFixture::defineFunction(const char* name, Block block) {
    _functions.push_back(std::move(block));
    setGlobal(name, JSObjectMake(global, nativeFunctionClass(), &_functions.back()));
}

void ViewFixture::record() {
    evaluate(recorder);
}

std::string ViewFixture::recorded() {
    return run("events.splice(0).join('\\n')");
}

void ViewFixture::collectGarbage() {
    runWeb();
    JSSynchronousGarbageCollectForDebugging(global);
    runWeb();
}

std::shared_ptr<const NSDictionary> ViewFixture::arguments() const {
    return std::make_shared<NSDictionary>(
        NSDictionary::Map{{WebPlugInContainerKey, id(std::make_shared<WebPlugInContainer>(frame))},
                          {WebPlugInBaseURLKey, id("https://example.test/page.html")}});
}

std::shared_ptr<PlugInInstance> ViewFixture::makeMap(const std::string& name) {
    g_main_context_acquire(mainContext()); // the host would wait for the main queue, which is this thread
    auto made = PlugInInstance::create({{{"id", name}}, "https://example.test/page.html", frame, 1, nullptr});
    g_main_context_release(mainContext());
    expose(name, made);
    return made;
}

void ViewFixture::expose(const std::string& name, const std::shared_ptr<PlugInInstance>& instance) {
    JSObjectRef object = setGlobal(name, JSObjectMake(global, nullptr, nullptr));
    JSValueProtect(global, object);
    _maps.push_back({object, instance});
    exposeClass(*context, object, VeyraView::classObject(), VeyraView::scriptingKeys(), resolve);
}

void ViewFixture::takeAway(const std::string& name) {
    JSObjectRef object = JSValueToObject(global, evaluate(name), nullptr);
    const auto map =
        std::find_if(_maps.begin(), _maps.end(), [&](const auto& shown) { return shown.object == object; });
    objectLeaves(object, map->instance->view());
    map->instance->stop();
}

SelfSharingObject* ViewFixture::resolve(JSContextRef, JSObjectRef object) {
    for (const ShownMap& map : _maps)
        if (map.object == object)
            return map.instance->view().get();
    return nullptr;
}

void ViewFixture::layOut(double width, double height) {
    onMain([&] { instance().window()->setSize({width, height}, 1); });
}

} // namespace veyra
