// The `host` object that Surface.js gets: native functions by which it starts and stops maps and reports layout,
// animation frames and the page's coming and going. Web thread only. When the engine collects it, its frame's page has
// gone.
#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <memory>

namespace veyra {

class PageFrame;

/// Makes the object in the isolated world of the frame.
JSObjectRef makeSurfaceHost(JSContextRef context, const std::shared_ptr<PageFrame>& frame);

} // namespace veyra
