// One load from an address: http, https, data and file. It starts when it is made and calls its delegate later, on the
// main queue, never from within a call of its own. Main queue only.
//
// The delegate is not owned. The last owner's release ends the load without a word, as `cancel` does; a callback may
// release the connection.
#pragma once

#include "Platform/Foundation/NSURLProtocol.h"
#include "Platform/Foundation/SelfSharingObject.h"

#include <functional>
#include <string_view>

namespace veyra {

class NSURLConnection;

/// Every load ends with exactly one of the last two, unless it is cancelled.
class NSURLConnectionDelegate {
public:
    virtual ~NSURLConnectionDelegate() = default;
    /// Once, before the data.
    virtual void connectionDidReceiveResponse(NSURLConnection&, const NSURLResponse&) {}
    /// The next bytes, in order.
    virtual void connectionDidReceiveData(NSURLConnection&, std::string_view /*bytes*/) {}
    virtual void connectionDidFinishLoading(NSURLConnection&) {}
    /// In NSURLErrorDomain; see NSURLError.h.
    virtual void connectionDidFailWithError(NSURLConnection&, const std::shared_ptr<NSError>&) {}
};

class NSURLConnection final : public SelfSharingObject, private NSURLProtocolClient {
public:
    VEYRA_CLASS()

    /// Null when the request has no address. An address that cannot be loaded gives a connection that fails.
    static std::shared_ptr<NSURLConnection>
    initWithRequestDelegate(const std::shared_ptr<const NSURLRequest>& request,
                            const std::shared_ptr<NSURLConnectionDelegate>& delegate);
    ~NSURLConnection() override { cancel(); }

    /// Ends the load; nothing is reported any more.
    void cancel();
    /// True until the load has ended or was cancelled.
    bool isLoading() const { return _protocol != nullptr; }
    /// The request under way: that of the last redirection, or the original one.
    const NSURLRequest& currentRequest() const { return *_currentRequest; }

private:
    NSURLConnection(std::shared_ptr<const NSURLRequest> request, std::weak_ptr<NSURLConnectionDelegate> delegate)
        : _currentRequest(std::move(request)), _delegate(std::move(delegate)) {}

    /// Calls the delegate, if there is one, and survives its releasing this connection.
    void report(const std::function<void(NSURLConnectionDelegate&)>& call);
    void wasRedirectedTo(const std::shared_ptr<const NSURL>& url) override;
    void didReceiveResponse(const NSURLResponse& response) override;
    void didLoadData(std::string_view bytes) override;
    void didFinishLoading() override;
    void didFailWithError(NSURLErrorCode code) override;

    std::shared_ptr<const NSURLRequest> _currentRequest;
    const std::weak_ptr<NSURLConnectionDelegate> _delegate;
    std::shared_ptr<NSURLProtocol> _protocol; // while loading
};

} // namespace veyra
