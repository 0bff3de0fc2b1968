// An ordinary WebKitGTK application, which has never heard of the plug-in but for the folder that it is told to load
// modules from. It shows a page, and writes its picture once the page's title is "shown":
//
//     foreign-application FOLDER ADDRESS F.png
#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <string_view>

namespace {

const char* pictureFile = nullptr;
int status = 1;

gboolean giveUp(gpointer) {
    gtk_main_quit();
    return G_SOURCE_REMOVE;
}

void pictureTaken(GObject* view, GAsyncResult* result, gpointer) {
    cairo_surface_t* picture = webkit_web_view_get_snapshot_finish(WEBKIT_WEB_VIEW(view), result, nullptr);
    if (picture && cairo_surface_write_to_png(picture, pictureFile) == CAIRO_STATUS_SUCCESS)
        status = 0;
    gtk_main_quit();
}

void titleChanged(WebKitWebView* view, GParamSpec*, gpointer) {
    const char* title = webkit_web_view_get_title(view);
    if (title && std::string_view(title) == "shown")
        webkit_web_view_get_snapshot(view, WEBKIT_SNAPSHOT_REGION_VISIBLE, WEBKIT_SNAPSHOT_OPTIONS_NONE, nullptr,
                                     pictureTaken, nullptr);
}

} // namespace

int main(int argc, char** argv) {
    gtk_init(&argc, &argv);
    if (argc != 4)
        return 2;
    pictureFile = argv[3];
    webkit_web_context_set_web_extensions_directory(webkit_web_context_get_default(), argv[1]);
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(window), 300, 250);
    GtkWidget* view = webkit_web_view_new();
    g_signal_connect(view, "notify::title", G_CALLBACK(titleChanged), nullptr);
    gtk_container_add(GTK_CONTAINER(window), view);
    gtk_widget_show_all(window);
    webkit_web_view_load_uri(WEBKIT_WEB_VIEW(view), argv[2]);
    g_timeout_add_seconds(30, giveUp, nullptr);
    gtk_main();
    return status;
}
