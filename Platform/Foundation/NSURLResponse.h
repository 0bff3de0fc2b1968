// What a server says before the data. A plain value; any thread.
#pragma once

#include <cstdint>

namespace veyra {

inline constexpr int64_t NSURLResponseUnknownLength = -1;

struct NSURLResponse {
    /// Bytes announced, or NSURLResponseUnknownLength.
    int64_t expectedContentLength = NSURLResponseUnknownLength;
    /// Of HTTP; 0 elsewhere. A page that says "not found" is a response like any other.
    int statusCode = 0;
};

} // namespace veyra
