// Loads "http:" and "https:" addresses. Follows redirections to other such addresses; asks for no content encoding, so
// that the announced length is that of the bytes. Every status of a server is a response. Main queue only.
#pragma once

#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/Foundation/NSURLProtocol.h"

typedef struct _GBytes GBytes;
typedef struct _GError GError;
typedef struct _GCancellable GCancellable;
typedef struct _GInputStream GInputStream;
typedef struct _SoupMessage SoupMessage;

namespace veyra {

class NSHTTPURLProtocol final : public NSURLProtocol {
public:
    NSHTTPURLProtocol(std::shared_ptr<const NSURLRequest> request, std::weak_ptr<NSURLProtocolClient> client);
    ~NSHTTPURLProtocol() override;
    void startLoading() override;
    void stopLoading() override;

private:
    void send();
    void gotStream(GInputStream* stream);
    void read();
    void gotBytes(GBytes* bytes);
    void failWith(const GError& error);
    /// Tells the client where redirections have led.
    void reportRedirection();
    /// Gives the server its full time again.
    void noteProgress();

    SoupMessage* _message = nullptr;
    GInputStream* _stream = nullptr;
    GCancellable* const _cancellable;
    int64_t _left = 0;        // bytes of the announced length to come; negative when none was announced
    bool _connected = false;  // the request has been written to a server
    bool _redirected = false; // and the client has not been told
    DispatchTimer _timeout;
};

} // namespace veyra
