// Threads that read files and decode images. One set a process, made with the first use and never destroyed.
#pragma once

#include "Platform/Foundation/DispatchQueue.h"

namespace veyra {

/// Runs the block on one of the threads, in the order of the calls as far as there are threads. What it throws is
/// logged. Any thread; never waits.
void runOnImageWorker(Block block);

} // namespace veyra
