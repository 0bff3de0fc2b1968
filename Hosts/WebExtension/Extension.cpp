// The entry point of the loadable module: every page and frame of the web process gets the plug-in.
#include "Hosts/WebExtension/PageFrame.h"
#include "Hosts/WebExtension/PageMessages.h"
#include "Hosts/WebExtension/Queues.h"

namespace veyra {

namespace {

void windowObjectCleared(WebKitScriptWorld*, WebKitWebPage* page, WebKitFrame* frame, gpointer) {
    PageFrame::windowObjectCleared(page, frame);
}

void pageCreated(WebKitWebExtension*, WebKitWebPage* page, gpointer) {
    answerMessages(page);
}

} // namespace

} // namespace veyra

extern "C" G_MODULE_EXPORT void webkit_web_extension_initialize_with_user_data(WebKitWebExtension* extension,
                                                                               GVariant*) {
    veyra::installWebThread();
    g_signal_connect(webkit_script_world_get_default(), "window-object-cleared", G_CALLBACK(veyra::windowObjectCleared),
                     nullptr);
    g_signal_connect(extension, "page-created", G_CALLBACK(veyra::pageCreated), nullptr);
}
