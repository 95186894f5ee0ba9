#ifndef TESTS_SUPPORT_HEAP_H
#define TESTS_SUPPORT_HEAP_H

#include <cstddef>

namespace test {

// Returns how many bytes of the heap are allocated in this process. With the GNU C library, without
// blocks that are mapped separately.
std::size_t heapInUse();

}  // namespace test

#endif
