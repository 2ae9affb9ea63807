#pragma once

namespace cratewell::worker {

// For a worker that has nothing to do: returns freed memory to the system, and the pages of library code that
// only the last jobs needed (they are read again from the system's file cache when they run).
void trimMemory();
// To be called while files can be opened; without it only freed memory is returned.
void prepareTrimming();

} // namespace cratewell::worker
