#include "Hosts/Veyra/ScriptPage.h"

#include "Hosts/Veyra/FrameClock.h"
#include "Hosts/Veyra/ScriptConsole.h"
#include "Hosts/Veyra/ScriptFailure.h"
#include "Hosts/Veyra/ScriptFunction.h"
#include "Hosts/Veyra/WebSetup.h"
#include "Platform/WebKit/WebScriptExposure.h"
#include "Platform/WebKit/WebThread.h"

#include <dlfcn.h>

namespace veyra {

namespace {

ScriptPage* runningPage = nullptr;

} // namespace

ScriptPage::ScriptPage(const CommandLine& line, Ended ended)
    : _line(line), _ended(std::move(ended)), _startTime(monotonicSeconds()), _global(JSGlobalContextCreate(nullptr)) {
    runningPage = this;
    installScriptConsole(_global);
    _context = ScriptContext::of(_global);
    _callbacks = std::make_unique<ScriptCallbacks>(
        _global, webThread(), _startTime,
        [this](JSObjectRef function, std::span<const JSValueRef> arguments) { call(function, arguments); });
}

ScriptPage::~ScriptPage() {
    runningPage = nullptr;
    _callbacks = nullptr;
    if (_map)
        _map->stop();
    _map = nullptr;
    if (_mapObject)
        JSValueUnprotect(_global, _mapObject);
    _context->invalidate();
    JSGlobalContextRelease(_global);
}

void ScriptPage::run(const std::string& source) {
    if (!makeMap()) {
        end({ExitStatus::Failed, "the map could not be made"});
        return;
    }
    installGlobals();
    evaluate(source);
    // As in a page: the script hears of everything that the first frame brings.
    dispatch_async(dispatch_get_main_queue(), [window = _window] { window->startDrawing(); });
    endWhenNothingIsLeft();
}

bool ScriptPage::makeMap() {
    PlugInElement element;
    element.baseURL = addressOfPage(_line.input);
    const auto idle = [this] {
        webThread().async([this] {
            if (runningPage == this) // the map goes on for a moment after its page
                endWhenNothingIsLeft();
        });
    };
    _uiDelegate = std::make_shared<ScriptUIDelegate>(_line.geolocation, _line.input, idle);
    _location = std::make_shared<PlayedLocation>(_line.location, _line.locationSpeed, idle);
    element.frame = std::make_shared<WebFrame>(_context, std::make_shared<WebView>(_uiDelegate));
    element.screenScale = _line.scale;
    element.locationProvider = _location;
    _map = PlugInInstance::create(element);
    if (!_map)
        return false;
    _window = std::make_shared<ScriptWindow>(_map->window(), _startTime);
    dispatch_get_main_queue().sync([&] {
        _window->start({static_cast<double>(_line.width), static_cast<double>(_line.height)}, _line.scale, idle);
    });
    return true;
}

SelfSharingObject* ScriptPage::resolve(JSContextRef, JSObjectRef object) {
    const bool isMap = runningPage && runningPage->_map && object == runningPage->_mapObject;
    return isMap ? runningPage->_map->view().get() : nullptr;
}

void ScriptPage::installGlobals() {
    JSObjectRef global = JSContextGetGlobalObject(_global);
    _mapObject = JSObjectMake(_global, nullptr, nullptr);
    JSValueProtect(_global, _mapObject);
    exposeClass(*_context, _mapObject, VeyraView::classObject(), VeyraView::scriptingKeys(), resolve);
    setScriptProperty(_global, global, "map", _mapObject);
    const auto closeFunction = [this](std::span<const JSValueRef>, JSValueRef*) -> JSValueRef {
        close();
        return nullptr;
    };
    setScriptProperty(_global, global, "close", makeScriptFunction(_global, closeFunction));
    _callbacks->installGlobals();
    reportRejections();
}

// The engine tells of promises that nobody catches by a function that its public headers do not declare.
void ScriptPage::reportRejections() {
    using Set = void (*)(JSGlobalContextRef, JSObjectRef, JSValueRef*);
    const auto set = reinterpret_cast<Set>(dlsym(RTLD_DEFAULT, "JSGlobalContextSetUnhandledRejectionCallback"));
    if (!set)
        return;
    const auto rejected = [this](std::span<const JSValueRef> arguments, JSValueRef*) -> JSValueRef {
        fail(arguments.size() > 1 ? arguments[1] : JSValueMakeUndefined(_global));
        return nullptr;
    };
    set(_global, makeScriptFunction(_global, rejected), nullptr);
}

void ScriptPage::evaluate(const std::string& source) {
    JSStringRef text = ScriptContext::makeString(NSString(std::string_view(source)));
    JSStringRef name = ScriptContext::makeString(NSString(std::string_view(_line.input)));
    JSValueRef exception = nullptr;
    JSEvaluateScript(_global, text, nullptr, name, 1, &exception);
    JSStringRelease(name);
    JSStringRelease(text);
    if (exception)
        fail(exception);
}

void ScriptPage::call(JSObjectRef function, std::span<const JSValueRef> arguments) {
    JSValueRef exception = nullptr;
    JSObjectCallAsFunction(_global, function, nullptr, arguments.size(), arguments.data(), &exception);
    if (exception)
        fail(exception);
    endWhenNothingIsLeft();
}

// What runs just now runs to its end; then no more events arrive.
void ScriptPage::close() {
    _isClosed = true;
    _callbacks->clear();
    webThread().async([this] {
        _context->setSuspended(true);
        endWhenNothingIsLeft();
    });
}

void ScriptPage::fail(JSValueRef exception) {
    if (!_hasEnded)
        end({ExitStatus::ScriptFailed, describeUncaught(_global, exception, _line.input)});
}

void ScriptPage::end(const Outcome& outcome) {
    _hasEnded = true;
    _callbacks->clear();
    _context->setSuspended(true);
    _ended(outcome);
}

// Asks the main queue and comes back. When nothing was queued on either queue meanwhile, all that was queued before has
// run and has asked for nothing more. A map that is busy asks again when it is idle.
void ScriptPage::endWhenNothingIsLeft() {
    if (_hasEnded || _isAsking || !mayEnd())
        return;
    if (_isClosed && _line.output.empty()) {
        end({});
        return;
    }
    _isAsking = true;
    const uint64_t onMain = dispatch_get_main_queue().queuedBlocks(), onWeb = webThread().queuedBlocks();
    dispatch_async(dispatch_get_main_queue(), [this, onMain, onWeb, isClosed = _isClosed] {
        const bool mayHearMore = _location->isPlaying() || _uiDelegate->isAsking();
        const bool isIdle = _window->isIdle() && (isClosed || !mayHearMore);
        webThread().async([this, onMain, onWeb, isIdle] {
            _isAsking = false;
            const bool isQuiet = dispatch_get_main_queue().queuedBlocks() == onMain + 1 && // the question
                                 webThread().queuedBlocks() == onWeb + 1;                  // and its answer
            if (_hasEnded || !isIdle || !mayEnd())
                return;
            if (isQuiet)
                end({});
            else
                endWhenNothingIsLeft();
        });
    });
}

} // namespace veyra
