#include "Platform/Foundation/NSURLRequest.h"

namespace veyra {

Class NSURLRequest::classObject() {
    static Class cls = new ClassObject("NSURLRequest", NSObject::classObject(), {});
    return cls;
}

std::shared_ptr<const NSURLRequest> NSURLRequest::requestWithURL(std::shared_ptr<const NSURL> url,
                                                                 double timeoutInterval, HeaderFields headerFields) {
    return std::shared_ptr<const NSURLRequest>(
        new NSURLRequest(std::move(url), timeoutInterval, std::move(headerFields)));
}

} // namespace veyra
