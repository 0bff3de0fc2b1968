#include "Hosts/Veyra/PageSnapshot.h"

#include "Hosts/Veyra/GeolocationPermission.h"
#include "Hosts/Veyra/WebSetup.h"

#include <glib-unix.h>

#include <cmath>

namespace veyra {

namespace {

/// What was asked of a page, and for which load.
struct Question {
    PageSnapshot* snapshot;
    unsigned load;
};

std::string secondsText(double seconds) {
    char* text = g_strdup_printf("%g second%s", seconds, seconds == 1 ? "" : "s");
    const std::string result = text;
    g_free(text);
    return result;
}

gboolean refuse() {
    return TRUE;
}

} // namespace

PageSnapshot::PageSnapshot(WebKitWebContext* context, const CommandLine& line)
    : _line(line), _address(addressOfPage(line.input)), _loop(g_main_loop_new(nullptr, FALSE)),
      _cancellable(g_cancellable_new()), _window(gtk_offscreen_window_new()), _view(makeWebView(context)) {
    gtk_widget_set_size_request(GTK_WIDGET(_view), line.width, line.height);
    gtk_container_add(GTK_CONTAINER(_window), GTK_WIDGET(_view));
    connectSignals();
    decideGeolocation(_view, line.geolocation, askAboutGeolocationInTerminal);
    gtk_widget_show_all(_window);
}

PageSnapshot::~PageSnapshot() {
    g_signal_handlers_disconnect_by_data(_view, this);
    gtk_widget_destroy(_window);
    g_object_unref(_cancellable);
    g_main_loop_unref(_loop);
}

void PageSnapshot::connectSignals() {
    using Self = PageSnapshot;
    const auto connect = [this](const char* signal, GCallback handler) {
        g_signal_connect(_view, signal, handler, this);
    };
    connect("load-changed",
            G_CALLBACK((+[](WebKitWebView*, WebKitLoadEvent event, Self* self) { self->loadChanged(event); })));
    connect("load-failed",
            G_CALLBACK((+[](WebKitWebView*, WebKitLoadEvent, const char* address, GError* error, Self* self) {
                const std::string problem = loadProblem(address, error);
                if (!problem.empty())
                    self->end(ExitStatus::LoadFailed, problem);
                return TRUE;
            })));
    connect("decide-policy",
            G_CALLBACK((+[](WebKitWebView*, WebKitPolicyDecision* decision, WebKitPolicyDecisionType type, Self* self) {
                return gboolean(type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE && self->refusesResponse(decision));
            })));
    connect("web-process-terminated",
            G_CALLBACK((+[](WebKitWebView*, WebKitWebProcessTerminationReason reason, Self* self) {
                self->end(ExitStatus::LoadFailed, reason == WEBKIT_WEB_PROCESS_EXCEEDED_MEMORY_LIMIT
                                                      ? "the web process took too much memory and was ended"
                                                      : "the web process crashed");
            })));
    connect("notify::title", G_CALLBACK((+[](WebKitWebView*, GParamSpec*, Self* self) { self->titleChanged(); })));
    // There is nobody to answer a dialog, and a page that waits for one would never be ready.
    connect("script-dialog", G_CALLBACK(refuse));
    connect("print", G_CALLBACK(refuse));
}

Outcome PageSnapshot::run() {
    const auto late = [](gpointer self) -> gboolean {
        auto* snapshot = static_cast<PageSnapshot*>(self);
        snapshot->end(ExitStatus::TimedOut, snapshot->lateness());
        return G_SOURCE_CONTINUE;
    };
    const auto interrupted = [](gpointer self) -> gboolean {
        static_cast<PageSnapshot*>(self)->end(ExitStatus::Failed, "interrupted");
        return G_SOURCE_CONTINUE;
    };
    const guint sources[] = {g_timeout_add(static_cast<guint>(std::ceil(*_line.timeout * 1000)), late, this),
                             g_unix_signal_add(SIGINT, interrupted, this),
                             g_unix_signal_add(SIGTERM, interrupted, this)};
    webkit_web_view_load_uri(_view, _address.c_str());
    g_main_loop_run(_loop);
    for (const guint source : sources)
        g_source_remove(source);
    g_cancellable_cancel(_cancellable);
    _console.drain();
    return _outcome;
}

void PageSnapshot::loadChanged(WebKitLoadEvent event) {
    if (event == WEBKIT_LOAD_STARTED) {
        ++_loads;
        _isLoaded = false;
    } else if (event == WEBKIT_LOAD_FINISHED && !_hasEnded) {
        _isLoaded = true;
        // The engine refuses some addresses, such as those at ports of other services, by an empty page.
        if (std::string_view(webkit_web_view_get_uri(_view)) == "about:blank" && _address != "about:blank")
            end(ExitStatus::LoadFailed, "cannot load " + _address + ": the web engine refuses the address");
        else if (!_line.titlePrefix)
            waitUntilIdle();
    }
}

bool PageSnapshot::refusesResponse(WebKitPolicyDecision* decision) {
    auto* response = WEBKIT_RESPONSE_POLICY_DECISION(decision);
    if (!webkit_response_policy_decision_is_main_frame_main_resource(response))
        return false;
    WebKitURIResponse* answer = webkit_response_policy_decision_get_response(response);
    const guint status = webkit_uri_response_get_status_code(answer);
    const std::string what = std::string("cannot load ") + webkit_uri_response_get_uri(answer);
    if (status >= 400)
        end(ExitStatus::LoadFailed, what + ": HTTP status " + std::to_string(status));
    else if (!webkit_response_policy_decision_is_mime_type_supported(response))
        end(ExitStatus::LoadFailed, what + ": it is no page but " + webkit_uri_response_get_mime_type(answer));
    else
        return false;
    webkit_policy_decision_ignore(decision);
    return true;
}

void PageSnapshot::titleChanged() {
    const char* title = webkit_web_view_get_title(_view);
    if (_line.titlePrefix && title && std::string_view(title).starts_with(*_line.titlePrefix))
        takePicture();
}

void PageSnapshot::waitUntilIdle() {
    webkit_web_view_send_message_to_page(
        _view, webkit_user_message_new("veyra-when-idle", nullptr), _cancellable,
        [](GObject* view, GAsyncResult* result, gpointer data) {
            const std::unique_ptr<Question> question(static_cast<Question*>(data));
            GError* error = nullptr;
            WebKitUserMessage* answer =
                webkit_web_view_send_message_to_page_finish(WEBKIT_WEB_VIEW(view), result, &error);
            if (answer && question->load == question->snapshot->_loads)
                question->snapshot->takePicture();
            else if (g_error_matches(error, WEBKIT_USER_MESSAGE_ERROR, WEBKIT_USER_MESSAGE_UNHANDLED_MESSAGE))
                question->snapshot->end(ExitStatus::Failed, "the plug-in could not be loaded into the page");
            g_clear_object(&answer);
            g_clear_error(&error);
        },
        new Question{this, _loads});
}

void PageSnapshot::takePicture() {
    if (_isTaking || _hasEnded)
        return;
    _isTaking = true;
    webkit_web_view_get_snapshot(
        _view, WEBKIT_SNAPSHOT_REGION_VISIBLE, WEBKIT_SNAPSHOT_OPTIONS_NONE, _cancellable,
        [](GObject* view, GAsyncResult* result, gpointer data) {
            GError* error = nullptr;
            cairo_surface_t* picture = webkit_web_view_get_snapshot_finish(WEBKIT_WEB_VIEW(view), result, &error);
            if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED)) {
                g_error_free(error);
                return; // the object may be gone
            }
            auto* self = static_cast<PageSnapshot*>(data);
            if (picture) {
                self->writePicture(picture);
                cairo_surface_destroy(picture);
            } else {
                self->end(ExitStatus::Failed, std::string("the page gave no picture: ") + error->message);
                g_error_free(error);
            }
        },
        this);
}

void PageSnapshot::writePicture(cairo_surface_t* picture) {
    const cairo_status_t status = cairo_surface_write_to_png(picture, _line.output.c_str());
    if (status == CAIRO_STATUS_SUCCESS)
        end(ExitStatus::Success, "");
    else
        end(ExitStatus::Failed, "cannot write " + _line.output + ": " + cairo_status_to_string(status));
}

void PageSnapshot::end(ExitStatus status, const std::string& message) {
    if (_hasEnded)
        return;
    _hasEnded = true;
    _outcome = {status, message};
    g_main_loop_quit(_loop);
}

std::string PageSnapshot::lateness() const {
    const std::string after = "time-out after " + secondsText(*_line.timeout) + ": ";
    if (_line.titlePrefix)
        return after + _address + " has no title that begins with \"" + *_line.titlePrefix + "\"";
    return after + _address + (_isLoaded ? " has maps that are not complete" : " is not loaded");
}

} // namespace veyra
