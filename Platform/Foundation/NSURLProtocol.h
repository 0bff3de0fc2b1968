// How a kind of address is loaded. A connection owns one for its load; the protocol reports to the connection on the
// main queue, never from within `startLoading`, and says nothing more once it was stopped. Main queue only.
#pragma once

#include "Platform/Foundation/NSURLError.h"
#include "Platform/Foundation/NSURLRequest.h"
#include "Platform/Foundation/NSURLResponse.h"

#include <string_view>

namespace veyra {

/// Hears of a load: redirections, one response, data, and one end. May stop the protocol in any of these.
class NSURLProtocolClient {
public:
    virtual ~NSURLProtocolClient() = default;
    virtual void wasRedirectedTo(const std::shared_ptr<const NSURL>& url) = 0;
    virtual void didReceiveResponse(const NSURLResponse& response) = 0;
    virtual void didLoadData(std::string_view bytes) = 0;
    virtual void didFinishLoading() = 0;
    virtual void didFailWithError(NSURLErrorCode code) = 0;
};

class NSURLProtocol : public std::enable_shared_from_this<NSURLProtocol> {
public:
    /// The protocol for the request's address, which has one; addresses of no known kind get one that fails. The client
    /// is not owned.
    static std::shared_ptr<NSURLProtocol> protocolForRequest(std::shared_ptr<const NSURLRequest> request,
                                                             std::weak_ptr<NSURLProtocolClient> client);
    NSURLProtocol(const NSURLProtocol&) = delete;
    NSURLProtocol& operator=(const NSURLProtocol&) = delete;
    virtual ~NSURLProtocol() = default;

    /// Called once.
    virtual void startLoading() = 0;
    /// Ends the load, if it has not ended yet.
    virtual void stopLoading() { _stopped = true; }

protected:
    NSURLProtocol(std::shared_ptr<const NSURLRequest> request, std::weak_ptr<NSURLProtocolClient> client)
        : _request(std::move(request)), _client(std::move(client)) {}

    const NSURLRequest& request() const { return *_request; }
    /// Null once the load has ended, or nobody listens any more. Asked for anew for every report.
    std::shared_ptr<NSURLProtocolClient> client() const { return _stopped ? nullptr : _client.lock(); }
    bool hasEnded() const { return _stopped; }
    /// The last report, now.
    void finish();
    void fail(NSURLErrorCode code);
    /// The last report, in a later turn of the main queue.
    void failLater(NSURLErrorCode code);

private:
    const std::shared_ptr<const NSURLRequest> _request;
    const std::weak_ptr<NSURLProtocolClient> _client;
    bool _stopped = false;
};

} // namespace veyra
