#include "Platform/WebKit/UIWebViewWebViewDelegate.h"

#include "Platform/Foundation/MethodBinding.h"

namespace veyra {

Class UIWebViewWebViewDelegate::classObject() {
    static Class cls = new ClassObject(
        "UIWebViewWebViewDelegate", NSObject::classObject(),
        {bindMethod<&UIWebViewWebViewDelegate::webViewDecidePolicyForGeolocationRequestFromOriginFrameListener>(
            "webView:decidePolicyForGeolocationRequestFromOrigin:frame:listener:")});
    return cls;
}

} // namespace veyra
