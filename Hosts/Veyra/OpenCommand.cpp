#include "Hosts/Veyra/OpenCommand.h"

#include "Hosts/Veyra/ConsoleOutput.h"
#include "Hosts/Veyra/GeolocationFeed.h"
#include "Hosts/Veyra/GeolocationPermission.h"
#include "Hosts/Veyra/QuestionBar.h"
#include "Hosts/Veyra/VirtualDisplay.h"
#include "Hosts/Veyra/WebSetup.h"

#include <glib-unix.h>

namespace veyra {

namespace {

gboolean quit(gpointer) {
    gtk_main_quit();
    return G_SOURCE_CONTINUE;
}

void windowDestroyed() {
    if (gtk_main_level() > 0) // or it is one of those that go at the end
        gtk_main_quit();
}

void destroyWindows() {
    GList* windows = gtk_window_list_toplevels();
    for (GList* entry = windows; entry; entry = entry->next)
        gtk_widget_destroy(GTK_WIDGET(entry->data));
    g_list_free(windows);
}

void titleChanged(WebKitWebView* view, GParamSpec*, GtkWindow* window) {
    const char* title = webkit_web_view_get_title(view);
    gtk_window_set_title(window, title && *title ? title : "veyra");
}

// The web engine shows its own page about the failure; the window stays.
gboolean loadFailed(WebKitWebView*, WebKitLoadEvent, const char* address, GError* error, gpointer) {
    const std::string problem = loadProblem(address, error);
    if (!problem.empty())
        g_printerr("veyra: %s\n", problem.c_str());
    return FALSE;
}

void webProcessEnded(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer) {
    g_printerr("veyra: the web process has ended; reload the page to start it again\n");
}

std::string placeOf(WebKitWebView* view) {
    const char* address = webkit_web_view_get_uri(view);
    GUri* uri = address ? g_uri_parse(address, G_URI_FLAGS_NONE, nullptr) : nullptr;
    const char* host = uri ? g_uri_get_host(uri) : nullptr;
    const std::string place = host && *host ? host : "This page";
    g_clear_pointer(&uri, g_uri_unref);
    return place;
}

void askAboutGeolocation(WebKitWebView* view, std::function<void(bool)> answered) {
    askInBar(GTK_BOX(gtk_widget_get_parent(GTK_WIDGET(view))), placeOf(view) + " wants to know where you are.",
             "_Allow", "_Deny", std::move(answered));
}

/// The window shows the view, below a place for questions, and ends with it; closing it ends the program.
void showInWindow(WebKitWebView* view, const CommandLine& line) {
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(window), line.width, line.height);
    gtk_window_set_title(GTK_WINDOW(window), "veyra");
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_container_add(GTK_CONTAINER(window), box);
    gtk_box_pack_end(GTK_BOX(box), GTK_WIDGET(view), TRUE, TRUE, 0);
    decideGeolocation(view, line.geolocation, askAboutGeolocation);
    g_signal_connect(view, "notify::title", G_CALLBACK(titleChanged), window);
    g_signal_connect(view, "load-failed", G_CALLBACK(loadFailed), nullptr);
    g_signal_connect(view, "web-process-terminated", G_CALLBACK(webProcessEnded), nullptr);
    g_signal_connect_swapped(view, "close", G_CALLBACK(gtk_widget_destroy), window);
    g_signal_connect(window, "destroy", G_CALLBACK(windowDestroyed), nullptr);
    gtk_widget_grab_focus(GTK_WIDGET(view));
    gtk_widget_show_all(window);
}

struct AutomatedWindows {
    WebKitWebContext* context;
    const CommandLine& line;
};

WebKitWebView* createAutomatedView(WebKitAutomationSession*, AutomatedWindows* windows) {
    WebKitWebView* view = makeWebView(windows->context, true);
    showInWindow(view, windows->line);
    return view;
}

void automationStarted(WebKitWebContext*, WebKitAutomationSession* session, AutomatedWindows* windows) {
    WebKitApplicationInfo* info = webkit_application_info_new();
    webkit_application_info_set_name(info, "veyra");
    webkit_automation_session_set_application_info(session, info);
    webkit_application_info_unref(info);
    g_signal_connect(session, "create-web-view", G_CALLBACK(createAutomatedView), windows);
}

} // namespace

Outcome runOpen(const CommandLine& line) {
    if (line.verbose)
        g_setenv("VEYRA_VERBOSE", "1", TRUE);
    std::unique_ptr<VirtualDisplay> display;
    Outcome outcome = startGtk(false, display);
    if (outcome.status != ExitStatus::Success)
        return outcome;
    const auto context = WebContext::make(outcome);
    if (!context)
        return outcome;
    const ConsoleOutput console;
    const GeolocationFeed feed(context->get(), line.location, line.locationSpeed);
    AutomatedWindows windows{context->get(), line};
    if (line.automation) {
        webkit_web_context_set_automation_allowed(context->get(), TRUE);
        g_signal_connect(context->get(), "automation-started", G_CALLBACK(automationStarted), &windows);
    } else {
        WebKitWebView* view = makeWebView(context->get());
        showInWindow(view, line);
        webkit_web_view_load_uri(view, addressOfPage(line.input).c_str());
    }
    g_unix_signal_add(SIGINT, quit, nullptr);
    g_unix_signal_add(SIGTERM, quit, nullptr);
    gtk_main();
    destroyWindows();
    return {};
}

} // namespace veyra
