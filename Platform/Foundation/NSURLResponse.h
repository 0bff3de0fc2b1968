// What a server says before the data. A plain value; any thread.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace veyra {

inline constexpr int64_t NSURLResponseUnknownLength = -1;

struct NSURLResponse {
    /// Bytes announced, or NSURLResponseUnknownLength.
    int64_t expectedContentLength = NSURLResponseUnknownLength;
    /// Of HTTP; 0 elsewhere. A page that says "not found" is a response like any other.
    int statusCode = 0;
    /// Of HTTP, names in lower case.
    std::map<std::string, std::string> headerFields{};

    /// The value of a field (name in lower case); "" when there is none.
    std::string headerField(const std::string& name) const {
        const auto found = headerFields.find(name);
        return found == headerFields.end() ? std::string() : found->second;
    }
};

} // namespace veyra
