// Ends of GIO's asynchronous calls for objects that may be gone by then. Internal to the URL protocols.
#pragma once

#include <gio/gio.h>

#include <memory>

namespace veyra {

/// What an asynchronous call is given as its user data: the object that made it, weakly.
template <class T>
gpointer asCallbackData(const std::shared_ptr<T>& self) {
    return new std::weak_ptr<T>(self);
}

/// The object again, or null when it has gone. Called once for each call's data.
template <class T>
std::shared_ptr<T> fromCallbackData(gpointer data) {
    const std::unique_ptr<std::weak_ptr<T>> self(static_cast<std::weak_ptr<T>*>(data));
    return self->lock();
}

} // namespace veyra
