// Where programming errors of the system itself are reported. Each thread has its own handler.
#pragma once

#include "Platform/Foundation/NSString.h"

#include <memory>

namespace veyra {

class NSAssertionHandler {
public:
    virtual ~NSAssertionHandler() = default;
    /// The handler of the calling thread.
    static NSAssertionHandler& currentHandler();
    /// Replaces the calling thread's handler; null brings the ordinary one back. Returns the former replacement.
    static std::unique_ptr<NSAssertionHandler> setCurrentHandler(std::unique_ptr<NSAssertionHandler> handler);

    /// Logs the failure and throws NSException (NSInternalInconsistencyException) with the description.
    virtual void handleFailureInFunction(const NSString& function, const NSString& file, int line,
                                         const NSString& description);
};

} // namespace veyra
