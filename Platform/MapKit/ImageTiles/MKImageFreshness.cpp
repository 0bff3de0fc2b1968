#include "Platform/MapKit/ImageTiles/MKImageFreshness.h"

#include "Platform/Foundation/HTTPDate.h"

#include <glib.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <map>
#include <optional>
#include <string>

namespace veyra {

namespace {

constexpr double day = 86400, week = 7 * day; // seconds

std::string trimmed(std::string text) {
    const char* const space = " \t\"";
    text.erase(0, std::min(text.find_first_not_of(space), text.size()));
    text.erase(text.find_last_not_of(space) + 1);
    return text;
}

/// Names in lower case, with their values or "".
std::map<std::string, std::string> directivesOf(const std::string& field) {
    std::map<std::string, std::string> directives;
    for (size_t start = 0; start < field.size();) {
        const size_t end = std::min(field.find(',', start), field.size());
        const std::string directive = field.substr(start, end - start);
        const size_t equals = std::min(directive.find('='), directive.size());
        std::string name = trimmed(directive.substr(0, equals));
        std::transform(name.begin(), name.end(), name.begin(), g_ascii_tolower);
        directives[name] = equals < directive.size() ? trimmed(directive.substr(equals + 1)) : "";
        start = end + 1;
    }
    return directives;
}

/// A count of seconds; nothing for what is none. What is too long is for ever.
std::optional<double> secondsIn(const std::string& text) {
    int64_t seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (error == std::errc::result_out_of_range) {
        return static_cast<double>(std::numeric_limits<int32_t>::max());
    }
    if (error != std::errc() || end != text.data() + text.size() || seconds < 0) {
        return std::nullopt;
    }
    return static_cast<double>(seconds);
}

/// Seconds that the answer is fresh from when the server made it.
double lifetime(const NSURLResponse& response, const std::map<std::string, std::string>& directives, double made) {
    if (const auto maxAge = directives.find("max-age"); maxAge != directives.end()) {
        return secondsIn(maxAge->second).value_or(0);
    }
    if (const std::string expires = response.headerField("expires"); !expires.empty()) {
        return timeOfHTTPDate(expires).value_or(0) - made; // what is no date has passed
    }
    if (const auto changed = timeOfHTTPDate(response.headerField("last-modified"))) {
        return std::min((made - *changed) / 10, week);
    }
    return day;
}

} // namespace

MKImageFreshness freshnessOfResponse(const NSURLResponse& response, double now) {
    const auto directives = directivesOf(response.headerField("cache-control"));
    MKImageFreshness freshness;
    freshness.mayStore = !directives.contains("no-store");
    freshness.mayUseStale = freshness.mayStore && !directives.contains("must-revalidate");
    if (!freshness.mayStore || directives.contains("no-cache")) {
        return freshness;
    }
    const double made = timeOfHTTPDate(response.headerField("date")).value_or(now);
    const double age = std::max(secondsIn(response.headerField("age")).value_or(0), 0.0);
    freshness.freshUntil = now + std::max(lifetime(response, directives, made) - age, 0.0);
    return freshness;
}

} // namespace veyra
