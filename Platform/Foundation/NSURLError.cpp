#include "Platform/Foundation/NSURLError.h"

#include <libsoup/soup.h>

namespace veyra {

namespace {

NSURLErrorCode codeOfIOError(int code, bool connected) {
    switch (code) {
    case G_IO_ERROR_TIMED_OUT:
        return NSURLErrorTimedOut;
    case G_IO_ERROR_HOST_NOT_FOUND:
        return NSURLErrorCannotFindHost;
    case G_IO_ERROR_NETWORK_UNREACHABLE:
    case G_IO_ERROR_HOST_UNREACHABLE:
        return NSURLErrorNotConnectedToInternet;
    case G_IO_ERROR_CONNECTION_REFUSED:
    case G_IO_ERROR_PROXY_FAILED:
        return NSURLErrorCannotConnectToHost;
    case G_IO_ERROR_CONNECTION_CLOSED: // a broken pipe too
    case G_IO_ERROR_PARTIAL_INPUT:
        return NSURLErrorNetworkConnectionLost;
    case G_IO_ERROR_NOT_FOUND:
        return NSURLErrorFileDoesNotExist;
    case G_IO_ERROR_IS_DIRECTORY:
        return NSURLErrorFileIsDirectory;
    case G_IO_ERROR_PERMISSION_DENIED:
        return NSURLErrorNoPermissionsToReadFile;
    default:
        return connected ? NSURLErrorNetworkConnectionLost : NSURLErrorUnknown;
    }
}

NSURLErrorCode codeOfSessionError(int code) {
    switch (code) {
    case SOUP_SESSION_ERROR_TOO_MANY_REDIRECTS:
    case SOUP_SESSION_ERROR_TOO_MANY_RESTARTS:
        return NSURLErrorHTTPTooManyRedirects;
    case SOUP_SESSION_ERROR_REDIRECT_NO_LOCATION:
        return NSURLErrorRedirectToNonExistentLocation;
    case SOUP_SESSION_ERROR_REDIRECT_BAD_URI: // also one to another kind of address
        return NSURLErrorUnsupportedURL;
    default:
        return NSURLErrorBadServerResponse;
    }
}

} // namespace

NSURLErrorCode urlErrorCode(const GError& error, bool connected) {
    if (error.domain == G_IO_ERROR)
        return codeOfIOError(error.code, connected);
    if (error.domain == G_RESOLVER_ERROR) // no name server answers: that is a machine without a network
        return error.code == G_RESOLVER_ERROR_TEMPORARY_FAILURE ? NSURLErrorNotConnectedToInternet
                                                                : NSURLErrorCannotFindHost;
    if (error.domain == G_TLS_ERROR)
        return error.code == G_TLS_ERROR_BAD_CERTIFICATE ? NSURLErrorServerCertificateUntrusted
                                                         : NSURLErrorSecureConnectionFailed;
    if (error.domain == SOUP_SESSION_ERROR)
        return codeOfSessionError(error.code);
    return NSURLErrorUnknown;
}

std::shared_ptr<NSError> makeURLError(NSURLErrorCode code) {
    return std::make_shared<NSError>(NSURLErrorDomain, code, NSDictionary::Map{});
}

} // namespace veyra
