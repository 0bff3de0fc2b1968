// What the platform raises. In a call from a script it becomes an Error in the page with the reason as its message; in
// a block on a queue it is logged and the queue goes on.
#pragma once

#include "Platform/Foundation/NSString.h"

#include <exception>
#include <string>

namespace veyra {

class NSException : public std::exception {
public:
    NSException(const char* name, NSString reason);

    const std::string& name() const { return _name; }
    const NSString& reason() const { return _reason; }
    /// "name: reason" in UTF-8.
    const char* what() const noexcept override { return _what.c_str(); }

private:
    std::string _name;
    NSString _reason;
    std::string _what;
};

inline constexpr const char* NSInvalidArgumentException = "NSInvalidArgumentException";
inline constexpr const char* NSRangeException = "NSRangeException";
inline constexpr const char* NSUndefinedKeyException = "NSUnknownKeyException";
inline constexpr const char* NSInternalInconsistencyException = "NSInternalInconsistencyException";

} // namespace veyra
