#include "Platform/Foundation/HTTPDate.h"

#include <libsoup/soup.h>

namespace veyra {

std::optional<double> timeOfHTTPDate(const std::string& text) {
    GDateTime* const date = soup_date_time_new_from_http_string(text.c_str());
    if (!date)
        return std::nullopt;
    const auto seconds = static_cast<double>(g_date_time_to_unix(date));
    g_date_time_unref(date);
    return seconds;
}

} // namespace veyra
