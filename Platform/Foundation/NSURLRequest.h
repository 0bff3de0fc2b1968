// What is asked of a URL connection. Immutable; any thread.
#pragma once

#include "Platform/Foundation/NSURL.h"

#include <map>
#include <string>

namespace veyra {

class NSURLRequest final : public NSObject {
public:
    VEYRA_CLASS()
    static constexpr double defaultTimeoutInterval = 60;
    /// Names and values; sent over HTTP, ignored elsewhere.
    using HeaderFields = std::map<std::string, std::string>;

    /// The address may be null; then no connection can be made. The timeout is in seconds without any progress.
    static std::shared_ptr<const NSURLRequest> requestWithURL(std::shared_ptr<const NSURL> url,
                                                              double timeoutInterval = defaultTimeoutInterval,
                                                              HeaderFields headerFields = {});

    const std::shared_ptr<const NSURL>& URL() const { return _url; }
    double timeoutInterval() const { return _timeoutInterval; }
    const HeaderFields& allHTTPHeaderFields() const { return _headerFields; }

private:
    NSURLRequest(std::shared_ptr<const NSURL> url, double timeoutInterval, HeaderFields headerFields)
        : _url(std::move(url)), _timeoutInterval(timeoutInterval), _headerFields(std::move(headerFields)) {}

    const std::shared_ptr<const NSURL> _url;
    const double _timeoutInterval;
    const HeaderFields _headerFields;
};

} // namespace veyra
