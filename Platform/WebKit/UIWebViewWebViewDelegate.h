// The user-interface delegate of a host's web view, as far as a plug-in asks it: may the page know where the user is?
// Plug-in views look the class up by its name and ask whatever is of it. Subclasses are the hosts'.
#pragma once

#include "Platform/Foundation/SelfSharingObject.h"

namespace veyra {

class UIWebViewWebViewDelegate : public SelfSharingObject {
public:
    VEYRA_CLASS()
    /// `webView:decidePolicyForGeolocationRequestFromOrigin:frame:listener:`. Asks the user, or applies a decision made
    /// before, and answers by the listener's `allow`, `deny` or `denyOnlyThisRequest`: at once or later, on any thread.
    /// The origin may be nil. Web thread.
    virtual void webViewDecidePolicyForGeolocationRequestFromOriginFrameListener(const id& webView, const id& origin,
                                                                                 const id& frame,
                                                                                 const id& listener) = 0;
};

} // namespace veyra
