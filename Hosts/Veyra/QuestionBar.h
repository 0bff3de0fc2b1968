// A question to the user in a bar above the page, as long as it is not answered. Main thread.
#pragma once

#include <functional>
#include <gtk/gtk.h>
#include <string>

namespace veyra {

/// Shows the question at the top of the box, with the two answers as buttons. `answered` is called once: with true for
/// `yes`, and with false for `no`, the bar's closing by Escape or the end of the box.
void askInBar(GtkBox* box, const std::string& question, const char* yes, const char* no,
              std::function<void(bool)> answered);

} // namespace veyra
