// Loads "data:" addresses. The announced length is that of the decoded data. Main queue only.
#pragma once

#include "Platform/Foundation/NSURLProtocol.h"

namespace veyra {

class NSDataURLProtocol final : public NSURLProtocol {
public:
    NSDataURLProtocol(std::shared_ptr<const NSURLRequest> request, std::weak_ptr<NSURLProtocolClient> client)
        : NSURLProtocol(std::move(request), std::move(client)) {}
    void startLoading() override;

private:
    void load();
};

} // namespace veyra
