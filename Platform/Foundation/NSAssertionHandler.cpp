#include "Platform/Foundation/NSAssertionHandler.h"

#include "Platform/Foundation/NSException.h"
#include "Platform/Foundation/NSLog.h"

namespace veyra {
namespace {

std::unique_ptr<NSAssertionHandler>& replacement() {
    static thread_local std::unique_ptr<NSAssertionHandler> handler;
    return handler;
}

} // namespace

NSAssertionHandler& NSAssertionHandler::currentHandler() {
    static NSAssertionHandler* const ordinary = new NSAssertionHandler;
    return replacement() ? *replacement() : *ordinary;
}

std::unique_ptr<NSAssertionHandler> NSAssertionHandler::setCurrentHandler(std::unique_ptr<NSAssertionHandler> handler) {
    replacement().swap(handler);
    return handler;
}

void NSAssertionHandler::handleFailureInFunction(const NSString& function, const NSString& file, int line,
                                                 const NSString& description) {
    NSLog("*** Assertion failure in %@, %@:%@: %@", {function, file, line, description});
    throw NSException(NSInternalInconsistencyException, description);
}

} // namespace veyra
