// The calls into the web engine's frames that it has deprecated without giving another way: the global contexts that
// the script engine's C interface needs, and the way of a node from one script world into another. Web thread only.
#pragma once

#include <JavaScriptCore/JavaScript.h>
#include <webkit2/webkit-web-extension.h>

namespace veyra {

/// The global context of the frame's document in the world; not retained. Makes it if need be.
JSGlobalContextRef frameGlobalContext(WebKitFrame* frame, WebKitScriptWorld* world);

/// The script object by which `world` knows the DOM node that `node`, of any world, stands for; null when it is no
/// node. The caller's stack keeps it alive.
JSObjectRef nodeInWorld(WebKitFrame* frame, WebKitScriptWorld* world, JSObjectRef node);

} // namespace veyra
