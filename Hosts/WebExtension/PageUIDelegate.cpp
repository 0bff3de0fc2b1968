#include "Hosts/WebExtension/PageUIDelegate.h"

#include "Hosts/WebExtension/PageFrame.h"

#include <algorithm>

namespace veyra {

Class PageUIDelegate::classObject() {
    static Class cls = new ClassObject("PageUIDelegate", UIWebViewWebViewDelegate::classObject(), {});
    return cls;
}

void PageUIDelegate::webViewDecidePolicyForGeolocationRequestFromOriginFrameListener(const id&, const id&, const id&,
                                                                                     const id& listener) {
    const auto asking = listener.object();
    if (!asking)
        return;
    if (const auto frame = _frame.lock()) {
        const auto& maps = frame->maps();
        const auto found =
            std::find_if(maps.begin(), maps.end(), [&](const auto& map) { return map->view() == asking; });
        if (found != maps.end()) {
            (*found)->location().ask(asking);
            return;
        }
    }
    asking->performSelector("deny");
}

} // namespace veyra
