// Reads numbers from the front of a string, remembering where it stands. One thread at a time.
#pragma once

#include "Platform/Foundation/NSString.h"

#include <cstdint>

namespace veyra {

class NSScanner {
public:
    static NSScanner scannerWithString(const NSString& string) { return NSScanner(string); }

    /// White space, an optional 0x, then hexadecimal digits of either case up to the first other unit. A number beyond
    /// 32 bits gives the largest one. With no digit the answer is false, and `value` and the scanner's place stay as
    /// they are.
    bool scanHexInt(uint32_t& value);
    /// The unit at which the next scan begins.
    size_t scanLocation() const { return _location; }
    bool isAtEnd() const { return _location == _string.length(); }

private:
    explicit NSScanner(const NSString& string) : _string(string) {}

    const NSString _string;
    size_t _location = 0;
};

} // namespace veyra
