// The user-interface delegate of a bare script: decides as the command line says whether the script may know where the
// user is. Web thread.
#pragma once

#include "Hosts/Veyra/CommandLine.h"
#include "Platform/WebKit/UIWebViewWebViewDelegate.h"

#include <atomic>

namespace veyra {

class ScriptUIDelegate final : public UIWebViewWebViewDelegate {
public:
    VEYRA_CLASS()
    /// `answered` is called on the main queue after each answer of the user.
    ScriptUIDelegate(GeolocationPolicy policy, std::string script, std::function<void()> answered)
        : _policy(policy), _script(std::move(script)), _answered(std::move(answered)) {}
    void webViewDecidePolicyForGeolocationRequestFromOriginFrameListener(const id& webView, const id& origin,
                                                                         const id& frame, const id& listener) override;
    /// True while the user has not answered. Any thread.
    bool isAsking() const { return _questions > 0; }

private:
    const GeolocationPolicy _policy;
    const std::string _script;
    const std::function<void()> _answered;
    std::atomic<unsigned> _questions{0};
};

} // namespace veyra
