#include "Platform/Foundation/NSNotificationCenter.h"

#include <algorithm>

namespace veyra {

NSNotificationCenter& NSNotificationCenter::defaultCenter() {
    static NSNotificationCenter* const center = new NSNotificationCenter;
    return *center;
}

NSNotificationCenter::Token NSNotificationCenter::addObserver(const NSString& name, Handler handler) {
    auto shared = std::make_shared<const Handler>(std::move(handler));
    const std::lock_guard guard(_mutex);
    _observers.push_back({_next, name, std::move(shared)});
    return _next++;
}

void NSNotificationCenter::removeObserver(Token token) {
    std::shared_ptr<const Handler> released; // what a handler holds goes away after the mutex is free
    const std::lock_guard guard(_mutex);
    const auto observer = std::ranges::find(_observers, token, &Observer::token);
    if (observer == _observers.end())
        return;
    released = std::move(observer->handler);
    _observers.erase(observer);
}

void NSNotificationCenter::postNotification(const NSString& name, std::shared_ptr<NSObject> object,
                                            std::shared_ptr<const NSDictionary> userInfo) {
    const NSNotification notification{name, std::move(object), std::move(userInfo)};
    std::vector<Observer> observers;
    {
        const std::lock_guard guard(_mutex);
        std::ranges::copy_if(_observers, std::back_inserter(observers),
                             [&](const Observer& observer) { return observer.name == name; });
    }
    const auto isRegistered = [this](Token token) {
        const std::lock_guard guard(_mutex);
        return std::ranges::find(_observers, token, &Observer::token) != _observers.end();
    };
    // A handler may remove observers that have not had their turn.
    for (const Observer& observer : observers)
        if (isRegistered(observer.token))
            (*observer.handler)(notification);
}

} // namespace veyra
