// Posts named notifications to observers, in the order in which they registered, on the posting thread. Any thread.
#pragma once

#include "Platform/Foundation/NSDictionary.h"

#include <functional>
#include <mutex>
#include <vector>

namespace veyra {

struct NSNotification {
    NSString name;
    std::shared_ptr<NSObject> object;
    std::shared_ptr<const NSDictionary> userInfo;
};

class NSNotificationCenter {
public:
    using Handler = std::function<void(const NSNotification&)>;
    using Token = uint64_t;

    /// The process's centre; never destroyed.
    static NSNotificationCenter& defaultCenter();

    /// Calls `handler` for each notification of that name. The handler must not keep what it is destroyed with.
    Token addObserver(const NSString& name, Handler handler);
    /// A handler that is running on another thread just now may still finish after this.
    void removeObserver(Token token);
    void postNotification(const NSString& name, std::shared_ptr<NSObject> object,
                          std::shared_ptr<const NSDictionary> userInfo = nullptr);

private:
    struct Observer {
        Token token;
        NSString name;
        std::shared_ptr<const Handler> handler;
    };
    std::mutex _mutex;
    std::vector<Observer> _observers; // guarded by _mutex
    Token _next = 1;                  // guarded by _mutex
};

} // namespace veyra
