#ifndef HOST_PROCESS_FORK_GENERATION_H
#define HOST_PROCESS_FORK_GENERATION_H

#include <cstdint>

namespace host {

// Returns a number that is different in every process of a chain of forks. Data that must not be
// used in two processes has the number of the process that created it. Returns 0 when the system
// does not provide such a number; such data must not be kept then. Any thread.
std::uint64_t forkGeneration();

// For the child of a fork.
void forgetForkGeneration();

}  // namespace host

#endif
