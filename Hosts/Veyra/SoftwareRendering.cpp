#include "Hosts/Veyra/SoftwareRendering.h"

#include <epoxy/gl.h>
#include <gtk/gtk.h>

#include <array>
#include <string>
#include <unistd.h>

namespace veyra {

namespace {

bool hasGraphicsDevice() {
    GDir* folder = g_dir_open("/dev/dri", 0, nullptr);
    if (!folder)
        return false;
    bool isThere = false;
    while (const char* name = g_dir_read_name(folder)) {
        const std::string path = std::string("/dev/dri/") + name;
        isThere = isThere || (g_str_has_prefix(name, "renderD") && access(path.c_str(), R_OK | W_OK) == 0);
    }
    g_dir_close(folder);
    return isThere;
}

/// The name of the renderer that draws into windows; "" when there is none.
std::string windowRenderer() {
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_widget_realize(window);
    std::string name;
    GdkGLContext* context = gdk_window_create_gl_context(gtk_widget_get_window(window), nullptr);
    if (context && gdk_gl_context_realize(context, nullptr)) {
        gdk_gl_context_make_current(context);
        if (const auto* text = reinterpret_cast<const char*>(glGetString(GL_RENDERER)))
            name = text;
        gdk_gl_context_clear_current();
    }
    g_clear_object(&context);
    gtk_widget_destroy(window);
    return name;
}

} // namespace

bool isSoftwareRenderer(std::string_view renderer) {
    constexpr std::array<std::string_view, 5> names{"llvmpipe", "softpipe", "swrast", "SwiftShader", "Software"};
    for (const std::string_view name : names)
        if (renderer.find(name) != std::string_view::npos)
            return true;
    return renderer.empty();
}

bool rendersInSoftware() {
    return !hasGraphicsDevice() || isSoftwareRenderer(windowRenderer());
}

} // namespace veyra
