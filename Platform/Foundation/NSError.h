// An error as a value: domain, code and a dictionary. Any thread.
#pragma once

#include "Platform/Foundation/NSDictionary.h"

namespace veyra {

inline constexpr const char* NSURLErrorDomain = "NSURLErrorDomain";

class NSError final : public NSObject {
public:
    VEYRA_CLASS()
    NSError(NSString domain, int code, NSDictionary::Map userInfo);

    const NSString& domain() const { return _domain; }
    int code() const { return _code; }
    const NSDictionary::Map& userInfo() const { return _userInfo; }
    /// "Error Domain=D Code=N" and the user information, keys in alphabetical order.
    NSString description() const override;

private:
    const NSString _domain;
    const int _code;
    const NSDictionary::Map _userInfo;
};

} // namespace veyra
