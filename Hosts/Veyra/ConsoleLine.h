// The text form of console messages in the terminal.
#pragma once

#include <string>
#include <string_view>

namespace veyra {

/// What is shown for one line that the web engine wrote to its standard output. The first line of a console message,
/// "[ADDRESS:LINE:COLUMN: ]CONSOLE [SOURCE ]LEVEL[ text]", becomes "CONSOLE LEVEL text", with the place in brackets behind an
/// error that the script engine raised. Any other line continues the message before it, and is indented by four spaces.
std::string consoleLine(std::string_view engineLine);

} // namespace veyra
