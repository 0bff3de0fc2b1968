// Loads addresses on a main queue of its own thread and waits for what becomes of them.
#pragma once

#include "Platform/Foundation/NSURLConnection.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace veyra {

/// What a connection has reported, in order.
struct Load {
    std::vector<std::string> reports; ///< "response LENGTH STATUS", "data", "finished", "failed CODE"
    std::string data;
    std::string url; ///< of the current request at the end
    bool ended = false;
};

class URLConnection : public testing::Test {
protected:
    using OnResponse = std::function<void(NSURLConnection&)>;

    URLConnection();
    /// Loads the address and waits for its end, or for `seconds`.
    static Load load(const std::string& address, double timeoutInterval = NSURLRequest::defaultTimeoutInterval,
                     double seconds = 20);
    /// The same; `onResponse` is called with the response.
    static Load load(const std::string& address, const OnResponse& onResponse, double seconds);
    /// The code of a load that failed before any response, or 0.
    static int failure(const std::string& address);
};

} // namespace veyra
