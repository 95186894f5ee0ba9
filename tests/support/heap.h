#ifndef TESTS_SUPPORT_HEAP_H
#define TESTS_SUPPORT_HEAP_H

#include <cstddef>

namespace test {

// The bytes that are allocated in this process at the moment, those of this thread at least.
std::size_t heapInUse();

}  // namespace test

#endif
