// Raises the two exceptions that a message or a key meets that its receiver does not know. Their reasons reach pages:
// they name the class, never an address. Any thread.
#pragma once

#include <string_view>

namespace veyra {

class NSString;

/// Throws NSInvalidArgumentException, "-[CLASS SELECTOR]: unrecognized selector sent to instance".
[[noreturn]] void raiseUnrecognizedSelector(std::string_view className, std::string_view selector);

/// Throws NSUndefinedKeyException, "[<CLASS> SELECTOR]: this class is not key value coding-compliant for the key KEY.".
[[noreturn]] void raiseUndefinedKey(std::string_view className, std::string_view selector, const NSString& key);

} // namespace veyra
