// What a plug-in view sees of its host: the container, its frame and the frame's web view. Made by the host; immutable
// but for the frame, which the host takes away when the page goes. Any thread; script contexts on the web thread only.
#pragma once

#include "Platform/WebKit/ScriptContext.h"

#include <mutex>

namespace veyra {

/// Keys of the plug-in arguments.
inline constexpr const char* WebPlugInContainerKey = "WebPlugInContainerKey"; ///< WebPlugInContainer
inline constexpr const char* WebPlugInAttributesKey =
    "WebPlugInAttributesKey"; ///< NSDictionary of strings, names in lower case
inline constexpr const char* WebPlugInBaseURLKey = "WebPlugInBaseURLKey"; ///< string

class WebView final : public NSObject {
public:
    VEYRA_CLASS()
    explicit WebView(std::shared_ptr<NSObject> uiDelegate) : _uiDelegate(std::move(uiDelegate)) {}
    /// The host's user-interface delegate; may be null.
    const std::shared_ptr<NSObject>& UIDelegate() const { return _uiDelegate; }

private:
    const std::shared_ptr<NSObject> _uiDelegate;
};

class WebFrame final : public NSObject {
public:
    VEYRA_CLASS()
    WebFrame(std::shared_ptr<ScriptContext> context, std::shared_ptr<WebView> webView)
        : _context(std::move(context)), _webView(std::move(webView)) {}
    /// Null once the page has gone. Web thread.
    JSGlobalContextRef globalContext() const { return _context ? _context->globalContext() : nullptr; }
    const std::shared_ptr<ScriptContext>& scriptContext() const { return _context; }
    const std::shared_ptr<WebView>& webView() const { return _webView; }

private:
    const std::shared_ptr<ScriptContext> _context;
    const std::shared_ptr<WebView> _webView;
};

class WebPlugInContainer final : public NSObject {
public:
    VEYRA_CLASS()
    explicit WebPlugInContainer(std::shared_ptr<WebFrame> frame) : _frame(std::move(frame)) {}
    /// Null for a container without a frame.
    const std::shared_ptr<WebFrame>& webFrame() const { return _frame; }

private:
    const std::shared_ptr<WebFrame> _frame;
};

} // namespace veyra
