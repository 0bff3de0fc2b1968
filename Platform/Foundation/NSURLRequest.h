// What is asked of a URL connection. Immutable; any thread.
#pragma once

#include "Platform/Foundation/NSURL.h"

namespace veyra {

class NSURLRequest final : public NSObject {
public:
    VEYRA_CLASS()
    static constexpr double defaultTimeoutInterval = 60;

    /// The address may be null; then no connection can be made. The timeout is in seconds without any progress.
    static std::shared_ptr<const NSURLRequest> requestWithURL(std::shared_ptr<const NSURL> url,
                                                              double timeoutInterval = defaultTimeoutInterval);

    const std::shared_ptr<const NSURL>& URL() const { return _url; }
    double timeoutInterval() const { return _timeoutInterval; }

private:
    NSURLRequest(std::shared_ptr<const NSURL> url, double timeoutInterval)
        : _url(std::move(url)), _timeoutInterval(timeoutInterval) {}

    const std::shared_ptr<const NSURL> _url;
    const double _timeoutInterval;
};

} // namespace veyra
