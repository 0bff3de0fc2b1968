// The user-interface delegate of a page: leaves the decision whether a map may know where the user is to the page's
// geolocation. One a frame, owned by the frame's WebView. Web thread.
#pragma once

#include "Platform/WebKit/UIWebViewWebViewDelegate.h"

namespace veyra {

class PageFrame;

class PageUIDelegate final : public UIWebViewWebViewDelegate {
public:
    VEYRA_CLASS()
    explicit PageUIDelegate(const std::weak_ptr<PageFrame>& frame) : _frame(frame) {}
    /// The listener is the view of one of the frame's maps; any other is denied.
    void webViewDecidePolicyForGeolocationRequestFromOriginFrameListener(const id& webView, const id& origin,
                                                                         const id& frame, const id& listener) override;

private:
    const std::weak_ptr<PageFrame> _frame;
};

} // namespace veyra
