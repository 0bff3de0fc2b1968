// Dates as HTTP writes them in header fields. Any thread.
#pragma once

#include <optional>
#include <string>

namespace veyra {

/// Seconds since 1970 (UTC); nothing for what is no such date.
std::optional<double> timeOfHTTPDate(const std::string& text);

} // namespace veyra
