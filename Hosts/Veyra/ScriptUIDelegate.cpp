#include "Hosts/Veyra/ScriptUIDelegate.h"

#include "Hosts/Veyra/TerminalQuestion.h"
#include "Platform/Foundation/DispatchQueue.h"

namespace veyra {

Class ScriptUIDelegate::classObject() {
    static Class cls = new ClassObject("ScriptUIDelegate", UIWebViewWebViewDelegate::classObject(), {});
    return cls;
}

void ScriptUIDelegate::webViewDecidePolicyForGeolocationRequestFromOriginFrameListener(const id&, const id&, const id&,
                                                                                       const id& listener) {
    const auto view = listener.object();
    if (_policy != GeolocationPolicy::Ask) {
        view->performSelector(_policy == GeolocationPolicy::Allow ? "allow" : "deny");
        return;
    }
    ++_questions;
    const auto self = std::static_pointer_cast<ScriptUIDelegate>(shared_from_this());
    dispatch_async(dispatch_get_main_queue(), [self, view] {
        askInTerminal("veyra: " + self->_script + " asks where you are. Tell it?", [self, view](bool allows) {
            view->performSelector(allows ? "allow" : "denyOnlyThisRequest");
            --self->_questions;
            self->_answered();
        });
    });
}

} // namespace veyra
