// The two queues of the web process: the web thread is the process' own main thread, the main queue a thread of ours.
#pragma once

namespace veyra {

/// Installs the web thread. Called once, on that thread, when the module is loaded.
void installWebThread();

/// Installs the main queue and starts its thread, at the first call. Web thread. The thread runs until the process
/// ends.
void startMainQueue();

} // namespace veyra
