#include "Platform/Foundation/NSURLConnection.h"

#include "Platform/Foundation/DispatchQueue.h"

#include <utility>

namespace veyra {

Class NSURLConnection::classObject() {
    static Class cls = new ClassObject("NSURLConnection", NSObject::classObject(), {});
    return cls;
}

std::shared_ptr<NSURLConnection>
NSURLConnection::initWithRequestDelegate(const std::shared_ptr<const NSURLRequest>& request,
                                         const std::shared_ptr<NSURLConnectionDelegate>& delegate) {
    if (!request->URL())
        return nullptr;
    std::shared_ptr<NSURLConnection> connection(new NSURLConnection(request, delegate));
    connection->_protocol =
        NSURLProtocol::protocolForRequest(request, std::shared_ptr<NSURLProtocolClient>(connection, connection.get()));
    connection->_protocol->startLoading();
    return connection;
}

void NSURLConnection::cancel() {
    if (const auto ended = std::exchange(_protocol, nullptr))
        ended->stopLoading();
}

void NSURLConnection::wasRedirectedTo(const std::shared_ptr<const NSURL>& url) {
    _currentRequest =
        NSURLRequest::requestWithURL(url, _currentRequest->timeoutInterval(), _currentRequest->allHTTPHeaderFields());
}

void NSURLConnection::report(const std::function<void(NSURLConnectionDelegate&)>& call) {
    const auto self = shared_from_this();
    if (const auto delegate = _delegate.lock()) // the library that calls knows nothing of exceptions
        runGuarded("URL connection", [&] { call(*delegate); });
}

void NSURLConnection::didReceiveResponse(const NSURLResponse& response) {
    report([&](auto& delegate) { delegate.connectionDidReceiveResponse(*this, response); });
}

void NSURLConnection::didLoadData(std::string_view bytes) {
    report([&](auto& delegate) { delegate.connectionDidReceiveData(*this, bytes); });
}

void NSURLConnection::didFinishLoading() {
    _protocol = nullptr;
    report([&](auto& delegate) { delegate.connectionDidFinishLoading(*this); });
}

void NSURLConnection::didFailWithError(NSURLErrorCode code) {
    _protocol = nullptr;
    report([&](auto& delegate) { delegate.connectionDidFailWithError(*this, makeURLError(code)); });
}

} // namespace veyra
