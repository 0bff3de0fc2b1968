#include "Platform/Foundation/NSHTTPURLProtocol.h"

#include "Platform/Foundation/GIOCallback.h"
#include "Platform/Foundation/HTTPSession.h"

#include <libsoup/soup.h>

#include <algorithm>
#include <utility>

namespace veyra {

namespace {

constexpr gsize chunk = 16384; // bytes

std::shared_ptr<NSHTTPURLProtocol> selfOf(gpointer data) {
    return std::static_pointer_cast<NSHTTPURLProtocol>(fromCallbackData<NSURLProtocol>(data));
}

bool hasNoBody(unsigned status) {
    return status == SOUP_STATUS_NO_CONTENT || status == SOUP_STATUS_NOT_MODIFIED;
}

std::map<std::string, std::string> headerFields(SoupMessage* message) {
    std::map<std::string, std::string> fields;
    SoupMessageHeadersIter iterator;
    soup_message_headers_iter_init(&iterator, soup_message_get_response_headers(message));
    const char *name = nullptr, *value = nullptr;
    while (soup_message_headers_iter_next(&iterator, &name, &value)) {
        std::string lowered = name;
        std::transform(lowered.begin(), lowered.end(), lowered.begin(), g_ascii_tolower);
        std::string& field = fields[lowered]; // a field that comes several times is a list
        field += field.empty() ? value : std::string(", ") + value;
    }
    return fields;
}

int64_t announcedLength(SoupMessage* message) {
    if (hasNoBody(soup_message_get_status(message)))
        return 0;
    SoupMessageHeaders* const headers = soup_message_get_response_headers(message);
    return soup_message_headers_get_encoding(headers) == SOUP_ENCODING_CONTENT_LENGTH
               ? soup_message_headers_get_content_length(headers)
               : NSURLResponseUnknownLength;
}

/// A message for the address, or null for one that names no host.
SoupMessage* makeMessage(const NSURL& url) {
    GUri* const uri = g_uri_parse(url.absoluteString().utf8().c_str(), GUriFlags(SOUP_HTTP_URI_FLAGS), nullptr);
    if (!uri)
        return nullptr;
    const char* const host = g_uri_get_host(uri);
    SoupMessage* const message = host && *host ? soup_message_new_from_uri("GET", uri) : nullptr;
    g_uri_unref(uri);
    return message;
}

} // namespace

NSHTTPURLProtocol::NSHTTPURLProtocol(std::shared_ptr<const NSURLRequest> request,
                                     std::weak_ptr<NSURLProtocolClient> client)
    : NSURLProtocol(std::move(request), std::move(client)), _cancellable(g_cancellable_new()) {}

NSHTTPURLProtocol::~NSHTTPURLProtocol() {
    g_cancellable_cancel(_cancellable);
    if (_message)
        g_signal_handlers_disconnect_by_data(_message, this);
    g_clear_object(&_message);
    g_clear_object(&_stream);
    g_object_unref(_cancellable);
}

void NSHTTPURLProtocol::startLoading() {
    _message = makeMessage(*request().URL());
    if (!_message)
        return failLater(NSURLErrorBadURL);
    SoupMessageHeaders* const headers = soup_message_get_request_headers(_message);
    soup_message_headers_replace(headers, "Accept-Encoding", "identity");
    for (const auto& [name, value] : request().allHTTPHeaderFields())
        soup_message_headers_replace(headers, name.c_str(), value.c_str());
    // The handlers go with the message's owner.
    g_signal_connect(_message, "starting", G_CALLBACK(+[](SoupMessage*, gpointer self) {
                         static_cast<NSHTTPURLProtocol*>(self)->_connected = true;
                         static_cast<NSHTTPURLProtocol*>(self)->noteProgress();
                     }),
                     this);
    g_signal_connect(_message, "restarted", G_CALLBACK(+[](SoupMessage* message, gpointer self) {
                         if (SOUP_STATUS_IS_REDIRECTION(soup_message_get_status(message)))
                             static_cast<NSHTTPURLProtocol*>(self)->_redirected = true;
                         static_cast<NSHTTPURLProtocol*>(self)->_connected = false;
                     }),
                     this);
    noteProgress();
    send();
}

void NSHTTPURLProtocol::stopLoading() {
    NSURLProtocol::stopLoading();
    _timeout.cancel();
    g_cancellable_cancel(_cancellable);
}

void NSHTTPURLProtocol::noteProgress() {
    if (hasEnded())
        return;
    _timeout.start(dispatch_get_main_queue(), request().timeoutInterval(), [this] {
        const auto self = shared_from_this();
        reportRedirection();
        fail(NSURLErrorTimedOut);
    });
}

void NSHTTPURLProtocol::reportRedirection() {
    if (!std::exchange(_redirected, false))
        return;
    char* const address = g_uri_to_string(soup_message_get_uri(_message));
    const auto url = NSURL::URLWithString(id(address));
    g_free(address);
    if (const auto listening = client(); listening && url)
        listening->wasRedirectedTo(url);
}

void NSHTTPURLProtocol::failWith(const GError& error) {
    const NSURLErrorCode code = urlErrorCode(error, _connected);
    reportRedirection();
    fail(code);
}

void NSHTTPURLProtocol::send() {
    soup_session_send_async(
        mainQueueHTTPSession(), _message, G_PRIORITY_DEFAULT, _cancellable,
        [](GObject* session, GAsyncResult* result, gpointer data) {
            GError* error = nullptr;
            GInputStream* stream = soup_session_send_finish(SOUP_SESSION(session), result, &error);
            const auto self = selfOf(data);
            if (self && !self->hasEnded())
                stream ? self->gotStream(stream) : self->failWith(*error);
            g_clear_error(&error);
            g_clear_object(&stream);
        },
        asCallbackData(shared_from_this()));
}

void NSHTTPURLProtocol::gotStream(GInputStream* stream) {
    _stream = G_INPUT_STREAM(g_object_ref(stream));
    noteProgress();
    reportRedirection();
    _left = announcedLength(_message);
    if (const auto listening = client())
        listening->didReceiveResponse(
            {_left, static_cast<int>(soup_message_get_status(_message)), headerFields(_message)});
    if (!hasEnded())
        read();
}

void NSHTTPURLProtocol::read() {
    g_input_stream_read_bytes_async(
        _stream, chunk, G_PRIORITY_DEFAULT, _cancellable,
        [](GObject* stream, GAsyncResult* result, gpointer data) {
            GError* error = nullptr;
            GBytes* const bytes = g_input_stream_read_bytes_finish(G_INPUT_STREAM(stream), result, &error);
            const auto self = selfOf(data);
            if (self && !self->hasEnded())
                bytes ? self->gotBytes(bytes) : self->failWith(*error);
            g_clear_error(&error);
            g_bytes_unref(bytes);
        },
        asCallbackData(shared_from_this()));
}

void NSHTTPURLProtocol::gotBytes(GBytes* bytes) {
    noteProgress();
    gsize size = 0;
    const auto* data = static_cast<const char*>(g_bytes_get_data(bytes, &size));
    if (size == 0) {
        // The library forgives a server that closes too early if that had announced to close.
        return _left > 0 ? fail(NSURLErrorNetworkConnectionLost) : finish();
    }
    _left -= static_cast<int64_t>(size);
    if (const auto listening = client())
        listening->didLoadData({data, size});
    if (!hasEnded())
        read();
}

} // namespace veyra
