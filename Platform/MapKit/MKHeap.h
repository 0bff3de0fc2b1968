// The heap as threads share it: each that asks for much memory gets a part of its own.
#pragma once

namespace veyra {

/// Gives back to the system what is free in the calling thread's part of the heap, and most of what is free in others.
/// About a millisecond: for when there is nothing else to do.
void giveHeapOfThreadBack();

} // namespace veyra
