#include "Hosts/Common/HostViewDelegate.h"

#include "Classes/VeyraView.h"
#include "Platform/Foundation/MethodBinding.h"
#include "Platform/WebKit/WebPlugInContainer.h"

#include <glib.h>

namespace veyra {

Class HostViewDelegate::classObject() {
    static Class cls =
        new ClassObject("HostViewDelegate", NSObject::classObject(),
                        {bindMethod<&HostViewDelegate::scriptObjectRequestsURLForStringAllowOtherDomainsError>(
                            "scriptObject:requestsURLForString:allowOtherDomains:error:")});
    return cls;
}

id HostViewDelegate::scriptObjectRequestsURLForStringAllowOtherDomainsError(const id& view, const id& string, bool,
                                                                            const id&) {
    const auto map = view.as<VeyraView>();
    if (!map || !string.isString())
        return id();
    const auto arguments = map->pluginArguments();
    const id base = arguments ? arguments->objectForKey(WebPlugInBaseURLKey) : id();
    const std::string baseURL = base.isString() ? base.string()->utf8() : std::string();
    const std::string relative = string.string()->utf8();
    char* resolved = g_uri_resolve_relative(baseURL.empty() ? nullptr : baseURL.c_str(), relative.c_str(),
                                            G_URI_FLAGS_ENCODED, nullptr);
    if (!resolved)
        return id();
    const std::string url = resolved;
    g_free(resolved);
    const bool isFile = g_ascii_strncasecmp(url.c_str(), "file:", 5) == 0;
    return isFile && !map->clientAllowsFileURLLoading() ? id() : id(NSString(std::string_view(url)));
}

} // namespace veyra
