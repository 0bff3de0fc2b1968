#include "Hosts/Common/HostViewDelegate.h"

#include "Classes/VeyraView.h"
#include "Platform/Foundation/MethodBinding.h"
#include "Platform/WebKit/WebPlugInContainer.h"

#include <glib.h>

#include <utility>

namespace veyra {

namespace {

/// A page's address with what no address may hold percent-encoded, as browsers read it. Spaces and what is not ASCII
/// are left: what resolves the address knows which part they are in.
std::string legalForm(std::string text) {
    constexpr std::string_view lineBreaks = "\t\n\r", illegal = "\"<>\\^`{|}";
    const size_t first = text.find_first_not_of(" \t\n\r\f"), last = text.find_last_not_of(" \t\n\r\f");
    text = first == text.npos ? std::string() : text.substr(first, last - first + 1);
    std::erase_if(text, [&](char c) { return lineBreaks.find(c) != lineBreaks.npos; });
    const bool isData = g_ascii_strncasecmp(text.c_str(), "data:", 5) == 0;
    std::string legal;
    bool isPath = !isData, hasFragment = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool isEscape =
            c == '%' && i + 2 < text.size() && g_ascii_isxdigit(text[i + 1]) && g_ascii_isxdigit(text[i + 2]);
        const bool isSecondMark = c == '#' && std::exchange(hasFragment, true);
        isPath = isPath && c != '?' && c != '#';
        if (c == '\\' && isPath) {
            legal += '/';
        } else if ((c == '%' && !isEscape) || isSecondMark || g_ascii_iscntrl(c) || illegal.find(c) != illegal.npos) {
            char encoded[4];
            g_snprintf(encoded, sizeof encoded, "%%%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
            legal += encoded;
        } else {
            legal += c;
        }
    }
    return legal;
}

} // namespace

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
    const std::string relative = legalForm(string.string()->utf8());
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
