#pragma once

#include <chrono>

namespace cratewell::worker {

// At the start of a worker: it dies with the program, leaves no core file of the user's media behind, and
// gives way to the window.
void behaveAsHelper();

// When all libraries are loaded, for the rest of the process and all its threads: no path can be opened or
// changed, no socket made, no program or process started, and the address space is bounded. What is asked for
// nevertheless fails as if it were not permitted. Where the system offers no filter the worker goes on
// without and says so on stderr.
void installSyscallFilter();

// At the start of a job: the process ends when it takes more processor time than this.
void allowProcessorTime(std::chrono::seconds time);

} // namespace cratewell::worker
