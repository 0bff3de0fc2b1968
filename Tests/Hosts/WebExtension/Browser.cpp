#include "Tests/Hosts/WebExtension/Browser.h"

#include "Tests/Hosts/WebExtension/PageServer.h"

#include <gtest/gtest.h>

#include <cstring>

namespace veyra::test {

namespace {

gboolean markTimeOut(gpointer flag) {
    *static_cast<bool*>(flag) = true;
    return G_SOURCE_REMOVE;
}

} // namespace

Browser& Browser::shared() {
    static auto* browser = new Browser;
    return *browser;
}

Browser::Browser() : _server(new PageServer) {
    WebKitWebContext* context = webkit_web_context_new_ephemeral();
    webkit_web_context_set_web_extensions_directory(context, VEYRA_EXTENSION_FOLDER);
    _view = WEBKIT_WEB_VIEW(g_object_new(WEBKIT_TYPE_WEB_VIEW, "web-context", context, nullptr));
    WebKitSettings* settings = webkit_web_view_get_settings(_view);
    webkit_settings_set_enable_write_console_messages_to_stdout(settings, TRUE);
    webkit_settings_set_hardware_acceleration_policy(settings, WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
    g_signal_connect(_view, "load-changed", G_CALLBACK((+[](WebKitWebView*, WebKitLoadEvent event, gpointer self) {
                         if (event == WEBKIT_LOAD_FINISHED)
                             static_cast<Browser*>(self)->_isLoaded = true;
                     })),
                     this);
    g_signal_connect(_view, "web-process-terminated", G_CALLBACK((+[](WebKitWebView*, int reason, gpointer) {
                         ADD_FAILURE() << "the web process ended, reason " << reason;
                     })),
                     this);
    g_signal_connect(_view, "create",
                     G_CALLBACK((+[](WebKitWebView*, WebKitNavigationAction* action, gpointer self) -> GtkWidget* {
                         static_cast<Browser*>(self)->_openedWindows.emplace_back(
                             webkit_uri_request_get_uri(webkit_navigation_action_get_request(action)));
                         return nullptr;
                     })),
                     this);
    listenToGeolocation();
    _window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(_window), 800, 600);
    gtk_container_add(GTK_CONTAINER(_window), GTK_WIDGET(_view));
    gtk_widget_show_all(_window);
    gtk_widget_grab_focus(GTK_WIDGET(_view));
}

Browser::~Browser() {
    g_signal_handlers_disconnect_by_data(_view, this);
    gtk_widget_destroy(_window);
}

std::string Browser::address(const std::string& path) const {
    return _server->origin() + path;
}

void Browser::load(const std::string& to) {
    _isLoaded = false;
    webkit_web_view_load_uri(_view, (to.starts_with("/") ? address(to) : to).c_str());
    ASSERT_TRUE(waitUntil([this] { return _isLoaded; }, 30)) << to;
}

void Browser::goBack() {
    _isLoaded = false;
    webkit_web_view_go_back(_view);
    ASSERT_TRUE(waitUntil([this] { return _isLoaded; }, 30));
}

void Browser::setBackForwardCacheEnabled(bool enabled) {
    webkit_settings_set_enable_page_cache(webkit_web_view_get_settings(_view), enabled);
}

std::string Browser::run(const std::string& body) {
    struct Answer {
        bool isThere = false;
        std::string text = "failed";
    } answer;
    webkit_web_view_call_async_javascript_function(
        _view, body.c_str(), -1, nullptr, nullptr, nullptr, nullptr,
        [](GObject* view, GAsyncResult* result, gpointer data) {
            auto* received = static_cast<Answer*>(data);
            GError* error = nullptr;
            JSCValue* value =
                webkit_web_view_call_async_javascript_function_finish(WEBKIT_WEB_VIEW(view), result, &error);
            if (value) {
                char* text = jsc_value_to_string(value);
                received->text = text;
                g_free(text);
                g_object_unref(value);
            } else {
                ADD_FAILURE() << error->message;
                g_error_free(error);
            }
            received->isThere = true;
        },
        &answer);
    while (!answer.isThere)
        g_main_context_iteration(nullptr, TRUE);
    return answer.text;
}

GVariant* Browser::ask(const char* message) {
    struct Answer {
        bool isThere = false;
        GVariant* parameters = nullptr;
    };
    auto* answer = new Answer;
    webkit_web_view_send_message_to_page(
        _view, webkit_user_message_new(message, nullptr), nullptr,
        [](GObject* view, GAsyncResult* result, gpointer data) {
            GError* error = nullptr;
            WebKitUserMessage* reply =
                webkit_web_view_send_message_to_page_finish(WEBKIT_WEB_VIEW(view), result, &error);
            if (!reply) {
                ADD_FAILURE() << error->message;
                g_error_free(error);
                return;
            }
            auto* received = static_cast<Answer*>(data);
            received->isThere = true;
            if (GVariant* parameters = webkit_user_message_get_parameters(reply))
                received->parameters = g_variant_ref(parameters);
            g_object_unref(reply);
        },
        answer);
    EXPECT_TRUE(waitUntil([answer] { return answer->isThere; }, 20)) << message;
    return answer->parameters;
}

uint64_t Browser::statistic(const char* name) {
    guint64 number = ~guint64{0};
    GVariant* numbers = ask("veyra-statistics");
    EXPECT_TRUE(numbers && g_variant_lookup(numbers, name, "t", &number)) << name;
    return number;
}

void Browser::collectGarbage() {
    ask("veyra-collect-garbage");
}

bool Browser::waitUntil(const std::function<bool()>& condition, double seconds) {
    bool isLate = false;
    const guint timer = g_timeout_add(static_cast<guint>(seconds * 1000), markTimeOut, &isLate);
    while (!condition() && !isLate)
        g_main_context_iteration(nullptr, TRUE);
    if (!isLate)
        g_source_remove(timer);
    return !isLate;
}

void Browser::wait(double seconds) {
    waitUntil([] { return false; }, seconds);
}

Pixel Browser::pixelAt(int x, int y) {
    cairo_surface_t* picture = nullptr;
    webkit_web_view_get_snapshot(
        _view, WEBKIT_SNAPSHOT_REGION_VISIBLE, WEBKIT_SNAPSHOT_OPTIONS_NONE, nullptr,
        [](GObject* view, GAsyncResult* result, gpointer data) {
            *static_cast<cairo_surface_t**>(data) =
                webkit_web_view_get_snapshot_finish(WEBKIT_WEB_VIEW(view), result, nullptr);
        },
        &picture);
    EXPECT_TRUE(waitUntil([&] { return picture != nullptr; }));
    // The snapshot has the pixels of the device.
    const int scale = cairo_image_surface_get_width(picture) / gtk_widget_get_allocated_width(GTK_WIDGET(_view));
    const unsigned char* row =
        cairo_image_surface_get_data(picture) + ptrdiff_t{cairo_image_surface_get_stride(picture)} * y * scale;
    uint32_t value = 0;
    std::memcpy(&value, row + ptrdiff_t{4} * x * scale, sizeof(value));
    cairo_surface_destroy(picture);
    return {static_cast<int>(value >> 16 & 255), static_cast<int>(value >> 8 & 255), static_cast<int>(value & 255)};
}

} // namespace veyra::test
