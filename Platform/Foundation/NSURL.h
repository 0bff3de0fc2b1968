// The address of a resource, absolute or relative. Immutable; any thread.
#pragma once

#include "Platform/Foundation/NSObject.h"

namespace veyra {

class NSURL final : public NSObject {
public:
    VEYRA_CLASS()

    /// Null for what is no string and for a string that is no legal address (RFC 3986: characters beyond ASCII, spaces
    /// and the like have to be percent-encoded).
    static std::shared_ptr<NSURL> URLWithString(const id& string);

    /// The string it was made from.
    const NSString& absoluteString() const { return _string; }
    /// In lower case; empty for a relative address.
    const std::string& scheme() const { return _scheme; }

    bool isEqual(const NSObject& other) const override;
    size_t hash() const override { return _string.hash(); }
    NSString description() const override { return _string; }

private:
    NSURL(NSString string, std::string scheme) : _string(std::move(string)), _scheme(std::move(scheme)) {}

    const NSString _string;
    const std::string _scheme;
};

} // namespace veyra
