#ifndef HOST_PROCESS_FORK_GENERATION_H
#define HOST_PROCESS_FORK_GENERATION_H

#include <cstdint>

namespace host {

// Tells this process from the one that it was forked from: a number that a child has never seen,
// neither in its parent nor in what the parent itself was forked from. What must not be used in two
// processes bears the number of the process that made it. 0 when the system does not say; then
// nothing may be kept. Any thread.
std::uint64_t forkGeneration();

// For the child of a fork.
void forgetForkGeneration();

}  // namespace host

#endif
