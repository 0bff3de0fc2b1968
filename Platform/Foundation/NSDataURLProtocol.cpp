#include "Platform/Foundation/NSDataURLProtocol.h"

#include "Platform/Foundation/DispatchQueue.h"

#include <algorithm>

namespace veyra {

namespace {

constexpr size_t prefixLength = 5; // "data:"

/// An address has been checked: two hexadecimal digits follow each percent sign.
std::string percentDecoded(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        decoded += static_cast<char>(g_ascii_xdigit_value(text[i + 1]) * 16 + g_ascii_xdigit_value(text[i + 2]));
        i += 2;
    }
    return decoded;
}

/// White space is skipped and the padding may be left out; nothing for what is no base64.
std::optional<std::string> base64Decoded(std::string text) {
    std::erase_if(text, [](char c) { return g_ascii_isspace(c); });
    if (text.size() % 4 == 0)
        for (int padding = 0; padding < 2 && text.ends_with('='); ++padding)
            text.pop_back();
    const bool isLegal =
        std::all_of(text.begin(), text.end(), [](char c) { return g_ascii_isalnum(c) || c == '+' || c == '/'; });
    if (!isLegal || text.size() % 4 == 1)
        return std::nullopt;
    text.append((4 - text.size() % 4) % 4, '=');
    if (!text.empty()) {
        gsize length = 0;
        g_base64_decode_inplace(text.data(), &length);
        text.resize(length);
    }
    return text;
}

bool isBase64(std::string_view header) {
    constexpr std::string_view mark = ";base64";
    return header.size() >= mark.size() &&
           g_ascii_strncasecmp(header.data() + header.size() - mark.size(), mark.data(), mark.size()) == 0;
}

/// The data of the address, or nothing when it has none.
std::optional<std::string> dataOf(const NSURL& url) {
    const std::string text = url.absoluteString().utf8();
    const std::string_view content = std::string_view(text).substr(prefixLength, text.find('#') - prefixLength);
    const size_t comma = content.find(',');
    if (comma == content.npos)
        return std::nullopt;
    std::string data = percentDecoded(content.substr(comma + 1));
    return isBase64(content.substr(0, comma)) ? base64Decoded(std::move(data)) : std::optional(std::move(data));
}

} // namespace

void NSDataURLProtocol::startLoading() {
    dispatch_async(dispatch_get_main_queue(), [weak = weak_from_this()] {
        if (const auto self = std::static_pointer_cast<NSDataURLProtocol>(weak.lock()))
            self->load();
    });
}

void NSDataURLProtocol::load() {
    const auto data = dataOf(*request().URL());
    if (!data)
        return fail(NSURLErrorBadURL);
    if (const auto listening = client())
        listening->didReceiveResponse({static_cast<int64_t>(data->size()), 0});
    if (const auto listening = client(); listening && !data->empty())
        listening->didLoadData(*data);
    finish();
}

} // namespace veyra
