#ifndef HOST_PROCESS_RANDOM_BYTES_H
#define HOST_PROCESS_RANDOM_BYTES_H

#include <cstddef>

namespace host {

// Fills memory with random bytes from the system. `size` must not exceed 256. Returns 0 or an
// errno. On failure the memory may have changed. Any thread.
int drawRandomBytes(void* memory, std::size_t size);

}  // namespace host

#endif
