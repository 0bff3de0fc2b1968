#include "Platform/MapKit/ImageTiles/MKTileAddress.h"

#include "Platform/Foundation/NSURL.h"

#include <glib.h>

#include <algorithm>

namespace veyra {

namespace {

bool isWebAddress(const std::string& text) {
    return g_ascii_strncasecmp(text.c_str(), "http://", 7) == 0 ||
           g_ascii_strncasecmp(text.c_str(), "https://", 8) == 0;
}

} // namespace

MKTileAddress::MKTileAddress(std::string pattern, std::vector<std::string> subdomains)
    : _pattern(std::move(pattern)), _subdomains(std::move(subdomains)) {
    if (!isWebAddress(_pattern)) {
        fail("it does not begin with http:// or https://");
    }
    if (_subdomains.empty()) {
        fail("there are no subdomains");
    }
    split();
    if (!has(Name::Zoom) || !has(Name::Column) || !(has(Name::Row) || has(Name::RowFromSouth))) {
        fail("it needs {z}, {x} and {y} or {-y}");
    }
    _hasDoubled = has(Name::Density);
    if (!NSURL::URLWithString(id(NSString(std::string_view(url(0, 0, 0, true)))))) {
        fail("it has characters that no address has");
    }
    if (host(0, 0, 0, true).empty()) {
        fail("it names no host");
    }
}

void MKTileAddress::split() {
    size_t at = 0;
    while (at < _pattern.size()) {
        const size_t brace = _pattern.find_first_of("{}", at);
        if (brace != at) {
            _parts.push_back({Name::Text, _pattern.substr(at, brace - at)});
        }
        if (brace == std::string::npos) {
            return;
        }
        const size_t end = _pattern.find_first_of("{}", brace + 1);
        if (_pattern[brace] == '}' || end == std::string::npos || _pattern[end] == '{') {
            fail("the brace at character " + std::to_string(brace + 1) + " has no pair");
        }
        addName(_pattern.substr(brace + 1, end - brace - 1));
        at = end + 1;
    }
}

void MKTileAddress::addName(const std::string& name) {
    static const std::pair<const char*, Name> names[] = {
        {"z", Name::Zoom},          {"x", Name::Column},    {"y", Name::Row},
        {"-y", Name::RowFromSouth}, {"s", Name::Subdomain}, {"r", Name::Density},
    };
    const auto* const found =
        std::find_if(std::begin(names), std::end(names), [&](const auto& entry) { return entry.first == name; });
    if (found == std::end(names)) {
        fail("{" + name + "} is none of {z}, {x}, {y}, {-y}, {s} and {r}");
    }
    _parts.push_back({found->second, {}});
}

bool MKTileAddress::has(Name name) const {
    return std::any_of(_parts.begin(), _parts.end(), [&](const Part& part) { return part.name == name; });
}

void MKTileAddress::fail(const std::string& problem) const {
    throw MKTileAddressError("\"" + _pattern + "\" is no pattern for tiles: " + problem);
}

std::string MKTileAddress::value(const Part& part, int zoom, int column, int row, bool doubled) const {
    switch (part.name) {
    case Name::Text:
        return part.text;
    case Name::Zoom:
        return std::to_string(zoom);
    case Name::Column:
        return std::to_string(column);
    case Name::Row:
        return std::to_string(row);
    case Name::RowFromSouth:
        return std::to_string((int64_t{1} << zoom) - 1 - row);
    case Name::Subdomain:
        // The same host for an image each time, so that what was stored under the address is found again.
        return _subdomains[static_cast<size_t>(column + row) % _subdomains.size()];
    case Name::Density:
        return doubled ? "@2x" : "";
    }
    return {};
}

std::string MKTileAddress::url(int zoom, int column, int row, bool doubled) const {
    std::string url;
    for (const Part& part : _parts) {
        url += value(part, zoom, column, row, doubled);
    }
    return url;
}

std::string MKTileAddress::host(int zoom, int column, int row, bool doubled) const {
    const std::string address = url(zoom, column, row, doubled);
    const size_t start = address.find("//") + 2;
    return address.substr(start, address.find_first_of("/?#", start) - start);
}

} // namespace veyra
