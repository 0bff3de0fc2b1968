#include "Platform/MapKit/ImageTiles/MKWebImageRequest.h"

#include "Platform/Foundation/HTTPDate.h"
#include "Platform/Foundation/NSURLError.h"
#include "Platform/Foundation/WorkQueue.h"

#include <glib.h>

#include <algorithm>
#include <charconv>

namespace veyra {

namespace {

// What is used for want of an answer is asked for again after so many seconds.
constexpr double staleRest = 60;

double now() {
    return static_cast<double>(g_get_real_time()) / 1e6;
}

const char* textOfError(int code) {
    switch (code) {
    case NSURLErrorTimedOut:
        return "the server does not answer in time";
    case NSURLErrorUnsupportedURL:
        return "it leads to an address of another kind";
    case NSURLErrorCannotFindHost:
        return "the host is unknown";
    case NSURLErrorCannotConnectToHost:
        return "the host takes no connection";
    case NSURLErrorNetworkConnectionLost:
        return "the connection was lost";
    case NSURLErrorHTTPTooManyRedirects:
        return "it leads from one address to the next without end";
    case NSURLErrorNotConnectedToInternet:
        return "there is no network";
    case NSURLErrorSecureConnectionFailed:
    case NSURLErrorServerCertificateUntrusted:
        return "the connection is not secure";
    default:
        return "the server's answer makes no sense";
    }
}

/// What another try does not mend.
bool isLasting(int code) {
    return code == NSURLErrorUnsupportedURL || code == NSURLErrorHTTPTooManyRedirects ||
           code == NSURLErrorServerCertificateUntrusted || code == NSURLErrorBadURL;
}

/// Seconds, from a count or a date.
double secondsToWait(const std::string& field) {
    double seconds = 0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), seconds);
    if (!field.empty() && error == std::errc() && end == field.data() + field.size()) {
        return std::max(seconds, 0.0);
    }
    const auto date = timeOfHTTPDate(field);
    return date ? std::max(*date - now(), 0.0) : 0;
}

} // namespace

MKWebImageRequest::MKWebImageRequest(std::string url, MKImageDisk& disk, Handlers handlers)
    : _url(std::move(url)), _disk(disk), _handlers(std::move(handlers)) {}

MKWebImageRequest::~MKWebImageRequest() = default;

void MKWebImageRequest::begin() {
    dispatch_async(dispatch_get_global_queue(), [weak = weak_from_this(), url = _url, &disk = _disk] {
        Stored stored;
        std::shared_ptr<const MKTileImage> image;
        if (auto found = disk.find(url)) {
            try {
                image = found->freshUntil > now() ? decodeTileImage(found->bytes) : nullptr;
                stored = std::make_shared<const MKStoredImage>(std::move(*found));
            } catch (const MKTileImageError&) {
                disk.remove(url);
            }
        }
        dispatch_async(dispatch_get_main_queue(), [weak, stored = std::move(stored), image = std::move(image)] {
            if (const auto self = weak.lock()) {
                self->foundOnDisk(stored, image);
            }
        });
    });
}

void MKWebImageRequest::foundOnDisk(Stored stored, std::shared_ptr<const MKTileImage> image) {
    _stored = std::move(stored);
    if (image) {
        MKImageResult result;
        result.image = std::move(image);
        result.freshUntil = _stored->freshUntil;
        end(std::move(result));
    } else {
        _handlers.needsHost();
    }
}

void MKWebImageRequest::load() {
    NSURLRequest::HeaderFields fields{{"Accept", "image/webp,image/png,image/jpeg,*/*;q=0.5"}};
    if (_stored && !_stored->entityTag.empty()) {
        fields["If-None-Match"] = _stored->entityTag;
    }
    if (_stored && !_stored->lastModified.empty()) {
        fields["If-Modified-Since"] = _stored->lastModified;
    }
    const auto url = NSURL::URLWithString(id(NSString(std::string_view(_url))));
    _connection =
        NSURLConnection::initWithRequestDelegate(NSURLRequest::requestWithURL(url, idleTimeout, std::move(fields)),
                                                 std::shared_ptr<NSURLConnectionDelegate>(shared_from_this(), this));
    _timer.start(dispatch_get_main_queue(), _connection ? timeout : 0, [this] {
        const auto self = shared_from_this();
        const int code = _connection ? NSURLErrorTimedOut : NSURLErrorBadURL;
        fallBack(textOfError(code), !isLasting(code));
    });
}

void MKWebImageRequest::connectionDidReceiveResponse(NSURLConnection&, const NSURLResponse& response) {
    _response = response;
    const bool isPicture = response.statusCode == 200;
    if (isPicture && response.expectedContentLength > static_cast<int64_t>(maximumBytes)) {
        fail("the answer is too long", false);
    } else if (!isPicture) {
        gotStatus(response.statusCode);
    }
}

void MKWebImageRequest::gotStatus(int status) {
    const std::string text = "the server answers with status " + std::to_string(status);
    if (status == 304 && _stored) {
        MKStoredImage answer = *_stored;
        if (const std::string tag = _response.headerField("etag"); !tag.empty()) {
            answer.entityTag = tag;
        }
        take(std::move(answer), freshnessOfResponse(_response, now()));
    } else if (status == 204) {
        end({});
    } else if (status == 408 || status == 429 || status >= 500) {
        fallBack(text, true);
    } else {
        fail(text, false);
    }
}

void MKWebImageRequest::connectionDidReceiveData(NSURLConnection&, std::string_view bytes) {
    if (_bytes.size() + bytes.size() > maximumBytes) {
        fail("the answer is too long", false);
    } else {
        _bytes += bytes;
    }
}

void MKWebImageRequest::connectionDidFinishLoading(NSURLConnection&) {
    // What the server announced and did not send was lost.
    if (_response.expectedContentLength > static_cast<int64_t>(_bytes.size())) {
        fallBack(textOfError(NSURLErrorNetworkConnectionLost), true);
        return;
    }
    MKStoredImage answer;
    answer.entityTag = _response.headerField("etag");
    answer.lastModified = _response.headerField("last-modified");
    answer.bytes = std::move(_bytes);
    take(std::move(answer), freshnessOfResponse(_response, now()));
}

void MKWebImageRequest::connectionDidFailWithError(NSURLConnection&, const std::shared_ptr<NSError>& error) {
    fallBack(textOfError(error->code()), !isLasting(error->code()));
}

void MKWebImageRequest::take(MKStoredImage answer, const MKImageFreshness& freshness) {
    _connection = nullptr;
    _timer.cancel();
    answer.freshUntil = freshness.freshUntil;
    answer.mayUseStale = freshness.mayUseStale;
    dispatch_async(dispatch_get_global_queue(),
                   [weak = weak_from_this(), url = _url, &disk = _disk, answer = std::move(answer), freshness] {
                       MKImageResult result;
                       result.freshUntil = freshness.freshUntil;
                       std::string problem;
                       try {
                           result.image = decodeTileImage(answer.bytes);
                       } catch (const MKTileImageError& error) {
                           problem = error.what();
                       }
                       if (result.image && freshness.mayStore) {
                           disk.insert(url, answer);
                       } else {
                           disk.remove(url);
                       }
                       dispatch_async(dispatch_get_main_queue(), [weak, result = std::move(result), problem] {
                           if (const auto self = weak.lock()) {
                               problem.empty() ? self->end(result) : self->fail(problem, false);
                           }
                       });
                   });
}

void MKWebImageRequest::fallBack(const std::string& reason, bool mayPass) {
    if (!_stored || !_stored->mayUseStale) {
        fail(reason, mayPass);
        return;
    }
    _connection = nullptr;
    _timer.cancel();
    dispatch_async(dispatch_get_global_queue(), [weak = weak_from_this(), stored = _stored, reason, mayPass] {
        MKImageResult result;
        result.freshUntil = now() + staleRest;
        try {
            result.image = decodeTileImage(stored->bytes);
        } catch (const MKTileImageError&) {
            // What is on disk is of no use either; what is reported is why the server gave nothing.
        }
        dispatch_async(dispatch_get_main_queue(), [weak, result = std::move(result), reason, mayPass] {
            if (const auto self = weak.lock()) {
                result.image ? self->end(result) : self->fail(reason, mayPass);
            }
        });
    });
}

void MKWebImageRequest::fail(const std::string& reason, bool mayPass) {
    MKImageResult result;
    // What follows a question mark may be the user's key for the server.
    result.failure = _url.substr(0, _url.find('?')) + ": " + reason;
    result.mayPass = mayPass;
    result.retryAfter = secondsToWait(_response.headerField("retry-after"));
    end(std::move(result));
}

void MKWebImageRequest::end(MKImageResult result) {
    const auto self = shared_from_this(); // the handler may let go of this request
    _connection = nullptr;
    _timer.cancel();
    _handlers.ended(std::move(result));
}

} // namespace veyra
