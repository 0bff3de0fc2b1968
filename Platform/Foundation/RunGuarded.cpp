// The end of the road for exceptions on a queue.
#include "Platform/Foundation/DispatchQueue.h"
#include "Platform/Foundation/NSException.h"
#include "Platform/Foundation/NSLog.h"

#include <new>

namespace veyra {
namespace {

/// Logs what a block threw; a log that cannot be written for want of memory is given up.
void logUncaught(const char* format, std::initializer_list<FormatArgument> arguments) noexcept {
    try {
        NSLog(format, arguments);
    } catch (...) { // NOLINT(bugprone-empty-catch): nothing is left to do
    }
}

/// Called while an exception is being handled.
void logCurrentException(const char* where) {
    try {
        throw;
    } catch (const NSException& exception) {
        logUncaught("Uncaught NSException in %s: %s", {where, exception.what()});
    } catch (const std::bad_alloc&) {
        logUncaught("Out of memory in %s", {where});
    } catch (const std::exception& exception) {
        logUncaught("Uncaught exception in %s: %s", {where, exception.what()});
    } catch (...) {
        logUncaught("Uncaught exception of unknown type in %s", {where});
    }
}

} // namespace

void runGuarded(const char* where, const Block& block) {
    try {
        block();
    } catch (...) {
        try {
            logCurrentException(where);
        } catch (...) { // NOLINT(bugprone-empty-catch): there was no memory left to say so
        }
    }
}

} // namespace veyra
