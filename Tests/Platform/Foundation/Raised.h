// What a piece of code raises, in a form that tests compare.
#pragma once

#include "Platform/Foundation/NSException.h"

namespace veyra {

/// "name: reason" of the NSException that the code throws; "nothing" when it throws none.
template <class Code>
std::string raisedBy(Code code) {
    try {
        code();
    } catch (const NSException& exception) {
        return exception.what();
    }
    return "nothing";
}

} // namespace veyra
