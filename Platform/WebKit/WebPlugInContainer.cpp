#include "Platform/WebKit/WebPlugInContainer.h"

namespace veyra {

Class WebView::classObject() {
    static Class cls = new ClassObject("WebView", NSObject::classObject(), {});
    return cls;
}

Class WebFrame::classObject() {
    static Class cls = new ClassObject("WebFrame", NSObject::classObject(), {});
    return cls;
}

Class WebPlugInContainer::classObject() {
    static Class cls = new ClassObject("WebPlugInContainer", NSObject::classObject(), {});
    return cls;
}

} // namespace veyra
