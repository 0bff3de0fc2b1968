#include "Platform/Foundation/NSException.h"

namespace veyra {

NSException::NSException(const char* name, NSString reason)
    : _name(name), _reason(std::move(reason)), _what(_name + ": " + _reason.utf8()) {}

} // namespace veyra
