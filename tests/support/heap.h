#ifndef TESTS_SUPPORT_HEAP_H
#define TESTS_SUPPORT_HEAP_H

#include <cstddef>

namespace test {

// Returns how many bytes are allocated in this process, or at least in this thread.
std::size_t heapInUse();

}  // namespace test

#endif
