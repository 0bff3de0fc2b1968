// The text form of console messages in the terminal.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace veyra {

/// What is shown for a text that the web engine logged. "[ADDRESS:LINE:COLUMN: ]CONSOLE [SOURCE ]LEVEL[ text]" becomes
/// "CONSOLE LEVEL text", with the place in brackets behind an error that the script engine raised; further lines of the
/// text are indented by four spaces. Nothing for a text that is no console message.
std::optional<std::string> consoleMessage(std::string_view logged);

} // namespace veyra
