#include "Platform/Foundation/Reasons.h"

#include "Platform/Foundation/NSException.h"

namespace veyra {

void raiseUnrecognizedSelector(std::string_view className, std::string_view selector) {
    std::string reason = "-[";
    reason.append(className).append(" ").append(selector).append("]: unrecognized selector sent to instance");
    throw NSException(NSInvalidArgumentException, NSString(std::string_view(reason)));
}

void raiseUndefinedKey(std::string_view className, std::string_view selector, const NSString& key) {
    std::u16string reason = utf16FromUTF8("[<");
    reason += utf16FromUTF8(className);
    reason += u"> ";
    reason += utf16FromUTF8(selector);
    reason += u"]: this class is not key value coding-compliant for the key ";
    reason += key.units();
    reason += u".";
    throw NSException(NSUndefinedKeyException, NSString(std::u16string_view(reason)));
}

} // namespace veyra
