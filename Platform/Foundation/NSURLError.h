// Numbers of the errors that URL loading reports, in the domain NSURLErrorDomain. Any thread.
#pragma once

#include "Platform/Foundation/NSError.h"

typedef struct _GError GError;

namespace veyra {

enum NSURLErrorCode : int {
    NSURLErrorUnknown = -1,
    NSURLErrorBadURL = -1000,
    NSURLErrorTimedOut = -1001,
    NSURLErrorUnsupportedURL = -1002,
    NSURLErrorCannotFindHost = -1003,
    NSURLErrorCannotConnectToHost = -1004,
    NSURLErrorNetworkConnectionLost = -1005,
    NSURLErrorHTTPTooManyRedirects = -1007,
    NSURLErrorNotConnectedToInternet = -1009,
    NSURLErrorRedirectToNonExistentLocation = -1010,
    NSURLErrorBadServerResponse = -1011,
    NSURLErrorFileDoesNotExist = -1100,
    NSURLErrorFileIsDirectory = -1101,
    NSURLErrorNoPermissionsToReadFile = -1102,
    NSURLErrorSecureConnectionFailed = -1200,
    NSURLErrorServerCertificateUntrusted = -1202,
};

/// The number for what GIO or the HTTP library reports. `connected` tells whether a connection to the server had been
/// made: the same system error then means that it was lost.
NSURLErrorCode urlErrorCode(const GError& error, bool connected);
/// An error of that number in NSURLErrorDomain.
std::shared_ptr<NSError> makeURLError(NSURLErrorCode code);

} // namespace veyra
