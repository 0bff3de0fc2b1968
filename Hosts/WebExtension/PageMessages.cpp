#include "Hosts/WebExtension/PageMessages.h"

#include "Hosts/WebExtension/PageFrame.h"
#include "Hosts/WebExtension/Statistics.h"
#include "Platform/WebKit/WebThread.h"

#include <cstring>
#include <dlfcn.h>
#include <sys/resource.h>

namespace veyra {

namespace {

/// A "veyra-when-idle" that has not been answered. Holds the message; knows the page weakly.
struct WaitingMessage {
    WaitingMessage(WebKitWebPage* page, WebKitUserMessage* request)
        : message(WEBKIT_USER_MESSAGE(g_object_ref(request))) {
        g_weak_ref_init(&webPage, page);
    }
    ~WaitingMessage() {
        g_weak_ref_clear(&webPage);
        g_object_unref(message);
    }
    WaitingMessage(const WaitingMessage&) = delete;
    WaitingMessage& operator=(const WaitingMessage&) = delete;

    WebKitUserMessage* const message;
    GWeakRef webPage;
    bool isAsking = false;     // the main queue is being asked
    bool mustAskAgain = false; // something changed meanwhile
};

std::vector<std::shared_ptr<WaitingMessage>>& waitingMessages() {
    static auto* messages = new std::vector<std::shared_ptr<WaitingMessage>>;
    return *messages;
}

void reply(WebKitUserMessage* message, GVariant* parameters) {
    webkit_user_message_send_reply(message, webkit_user_message_new(webkit_user_message_get_name(message), parameters));
}

bool isPageSettled(WebKitWebPage* page, std::vector<std::shared_ptr<UIWindow>>& windows) {
    for (const auto& frame : PageFrame::shownFrames(page)) {
        if (!frame->isSettled())
            return false;
        for (const auto& map : frame->maps()) {
            if (!map->presenter().isSettled() || map->location().isAsking())
                return false;
            if (map->presenter().isShown())
                windows.push_back(map->window());
        }
    }
    return true;
}

// The page's side is at rest; the main queue says whether the maps are. What the page asked of them before is queued
// before.
void consider(const std::shared_ptr<WaitingMessage>& waiting) {
    if (waiting->isAsking) {
        waiting->mustAskAgain = true;
        return;
    }
    auto* page = static_cast<WebKitWebPage*>(g_weak_ref_get(&waiting->webPage));
    std::vector<std::shared_ptr<UIWindow>> windows;
    const bool isSettled = !page || isPageSettled(page, windows);
    g_clear_object(&page);
    if (!isSettled)
        return;
    if (windows.empty()) {
        reply(waiting->message, nullptr);
        std::erase(waitingMessages(), waiting);
        return;
    }
    waiting->isAsking = true;
    waiting->mustAskAgain = false;
    dispatch_async(dispatch_get_main_queue(), [waiting, windows = std::move(windows)] {
        const bool areIdle =
            std::all_of(windows.begin(), windows.end(), [](const auto& window) { return window->isIdle(); });
        webThread().async([waiting, areIdle] {
            waiting->isAsking = false;
            if (waiting->mustAskAgain) {
                consider(waiting);
            } else if (areIdle) {
                reply(waiting->message, nullptr);
                std::erase(waitingMessages(), waiting);
            }
        });
    });
}

guint64 processorMicroseconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto microseconds = [](const timeval& time) {
        return static_cast<guint64>(time.tv_sec) * G_USEC_PER_SEC + static_cast<guint64>(time.tv_usec);
    };
    return microseconds(usage.ru_utime) + microseconds(usage.ru_stime);
}

GVariant* statistics() {
    GVariantDict numbers;
    g_variant_dict_init(&numbers, nullptr);
    g_variant_dict_insert(&numbers, "views", "t", guint64{liveViews()});
    g_variant_dict_insert(&numbers, "contexts", "t", guint64{ScriptContext::liveContexts()});
    g_variant_dict_insert(&numbers, "frames-drawn", "t", guint64{frameStatistics().drawn});
    g_variant_dict_insert(&numbers, "frames-put", "t", guint64{frameStatistics().put});
    g_variant_dict_insert(&numbers, "animation-frames-requested", "t",
                          guint64{frameStatistics().animationFramesRequested});
    g_variant_dict_insert(&numbers, "frame-microseconds", "t", frameStatistics().times.takePercentile95());
    g_variant_dict_insert(&numbers, "processor-microseconds", "t", processorMicroseconds());
    return g_variant_dict_end(&numbers);
}

// The collector takes every word on the stack for a pointer. What returned calls have left below would come to lie in
// the gaps of its own frames, and keep what it points to.
__attribute__((noinline)) void clearStackBelow() {
    char below[128 * 1024];
    explicit_bzero(below, sizeof below);
}

// The engine's own way collects only some time later; it has another one, for debugging, which its headers do not
// declare.
void collectGarbage() {
    JSGlobalContextRef context = PageFrame::anyContext();
    if (!context)
        return;
    using Collect = void (*)(JSContextRef);
    if (const auto collect = reinterpret_cast<Collect>(dlsym(RTLD_DEFAULT, "JSSynchronousGarbageCollectForDebugging")))
        collect(context);
    else
        JSGarbageCollect(context);
}

// Called by the loop itself, not from within a message, for the sake of a short stack.
gboolean collectAndReply(gpointer data) {
    clearStackBelow();
    collectGarbage();
    reply(WEBKIT_USER_MESSAGE(data), nullptr);
    return G_SOURCE_REMOVE;
}

gboolean messageReceived(WebKitWebPage* page, WebKitUserMessage* message, gpointer) {
    const std::string_view name = webkit_user_message_get_name(message);
    if (name == "veyra-when-idle") {
        waitingMessages().push_back(std::make_shared<WaitingMessage>(page, message));
        consider(waitingMessages().back());
    } else if (name == "veyra-statistics") {
        reply(message, statistics());
    } else if (name == "veyra-collect-garbage") {
        g_idle_add_full(G_PRIORITY_DEFAULT, collectAndReply, g_object_ref(message), g_object_unref);
    } else {
        return FALSE;
    }
    return TRUE;
}

} // namespace

void answerMessages(WebKitWebPage* page) {
    g_signal_connect(page, "user-message-received", G_CALLBACK(messageReceived), nullptr);
}

void answerWaitingMessages() {
    const auto messages = waitingMessages();
    for (const auto& waiting : messages)
        consider(waiting);
}

} // namespace veyra
