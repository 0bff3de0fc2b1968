// A question to the user in the terminal. Main thread.
#pragma once

#include <functional>
#include <string>

namespace veyra {

/// Prints the question with " [y/N] " to standard error and reads a line of standard input without waiting for it:
/// `answered` is called later, on the main context, with true for a line that begins with y or Y. The end of the input
/// is a no. Questions are put one after the other.
void askInTerminal(const std::string& question, std::function<void(bool)> answered);

} // namespace veyra
