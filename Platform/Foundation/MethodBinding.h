// Makes run-time methods out of member functions: bindMethod<&VeyraView::setMapType>("setMapType:"). Arguments are
// converted by the platform's rules (id's conversions, which throw), results become ids; type encodings follow the C++
// types.
#pragma once

#include "Platform/Foundation/NSObject.h"

#include <type_traits>
#include <utility>

namespace veyra {
namespace binding {

template <class T>
constexpr char typeCode() {
    if constexpr (std::is_void_v<T>)
        return 'v';
    else if constexpr (std::is_same_v<T, bool>)
        return 'c';
    else if constexpr (std::is_floating_point_v<T>)
        return 'd';
    else if constexpr (std::is_integral_v<T>)
        return 'Q';
    else
        return '@';
}

template <class T>
decltype(auto) fromId(const id& value) {
    if constexpr (std::is_same_v<T, bool>)
        return value.boolValue();
    else if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(value.doubleValue());
    else if constexpr (std::is_integral_v<T>)
        return static_cast<T>(value.unsignedIntegerValue());
    else
        return static_cast<const id&>(value);
}

template <auto Member>
struct Binder;

template <class R, class C, class... A, R (C::*Member)(A...)>
struct Binder<Member> {
    static id call(NSObject& self, std::span<const id> arguments) {
        return call(static_cast<C&>(self), arguments, std::index_sequence_for<A...>{});
    }
    static std::string types() { return std::string{typeCode<R>(), '@', ':', typeCode<std::remove_cvref_t<A>>()...}; }

private:
    template <size_t... I>
    static id call(C& self, [[maybe_unused]] std::span<const id> arguments, std::index_sequence<I...>) {
        if constexpr (std::is_void_v<R>) {
            (self.*Member)(fromId<std::remove_cvref_t<A>>(arguments[I])...);
            return id();
        } else {
            return id((self.*Member)(fromId<std::remove_cvref_t<A>>(arguments[I])...));
        }
    }
};

template <class R, class C, class... A, R (C::*Member)(A...) const>
struct Binder<Member> {
    static id call(NSObject& self, std::span<const id> arguments) {
        return call(static_cast<const C&>(self), arguments, std::index_sequence_for<A...>{});
    }
    static std::string types() { return std::string{typeCode<R>(), '@', ':', typeCode<std::remove_cvref_t<A>>()...}; }

private:
    template <size_t... I>
    static id call(const C& self, [[maybe_unused]] std::span<const id> arguments, std::index_sequence<I...>) {
        if constexpr (std::is_void_v<R>) {
            (self.*Member)(fromId<std::remove_cvref_t<A>>(arguments[I])...);
            return id();
        } else {
            return id((self.*Member)(fromId<std::remove_cvref_t<A>>(arguments[I])...));
        }
    }
};

} // namespace binding

/// The method that calls the member function. The selector has one colon for each parameter.
template <auto Member>
Method bindMethod(const char* selector) {
    return Method{selector, binding::Binder<Member>::types(), &binding::Binder<Member>::call};
}

} // namespace veyra
