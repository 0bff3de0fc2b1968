// The web thread: the serial executor that owns the script engine. Installed once by the host.
#pragma once

#include "Platform/Foundation/DispatchQueue.h"

namespace veyra {

/// Installs the web thread for the process. Called once, by the host, before any view exists; never destroyed.
void setWebThread(DispatchQueue* queue);
DispatchQueue& webThread();

/// Runs the block on the web thread: at once when called there, else queued in order.
void WebThreadRun(Block block);

} // namespace veyra
