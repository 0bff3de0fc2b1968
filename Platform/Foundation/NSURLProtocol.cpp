#include "Platform/Foundation/NSURLProtocol.h"

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/Foundation/NSDataURLProtocol.h"
#include "Platform/Foundation/NSFileURLProtocol.h"
#include "Platform/Foundation/NSHTTPURLProtocol.h"

namespace veyra {

namespace {

/// Addresses of no known kind, relative ones included.
class UnsupportedURLProtocol final : public NSURLProtocol {
public:
    UnsupportedURLProtocol(std::shared_ptr<const NSURLRequest> request, std::weak_ptr<NSURLProtocolClient> client)
        : NSURLProtocol(std::move(request), std::move(client)) {}
    void startLoading() override { failLater(NSURLErrorUnsupportedURL); }
};

} // namespace

std::shared_ptr<NSURLProtocol> NSURLProtocol::protocolForRequest(std::shared_ptr<const NSURLRequest> request,
                                                                 std::weak_ptr<NSURLProtocolClient> client) {
    const std::string& scheme = request->URL()->scheme();
    if (scheme == "http" || scheme == "https")
        return std::make_shared<NSHTTPURLProtocol>(std::move(request), std::move(client));
    if (scheme == "data")
        return std::make_shared<NSDataURLProtocol>(std::move(request), std::move(client));
    if (scheme == "file")
        return std::make_shared<NSFileURLProtocol>(std::move(request), std::move(client));
    return std::make_shared<UnsupportedURLProtocol>(std::move(request), std::move(client));
}

void NSURLProtocol::finish() {
    const auto listening = client();
    stopLoading();
    if (listening)
        listening->didFinishLoading();
}

void NSURLProtocol::fail(NSURLErrorCode code) {
    const auto listening = client();
    stopLoading();
    if (listening)
        listening->didFailWithError(code);
}

void NSURLProtocol::failLater(NSURLErrorCode code) {
    dispatch_async(dispatch_get_main_queue(), [weak = weak_from_this(), code] {
        if (const auto self = weak.lock())
            self->fail(code);
    });
}

} // namespace veyra
