// The message about an exception that a script did not catch. Script thread.
#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <string>

namespace veyra {

/// "FILE:LINE:COLUMN: uncaught exception: TEXT". Only errors know where they were made: for another value that was
/// thrown, the place is `file` alone.
std::string describeUncaught(JSContextRef context, JSValueRef exception, const std::string& file);

} // namespace veyra
