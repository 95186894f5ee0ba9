#include "tests/support/heap.h"

#include "tests/support/sanitizer.h"

#if TESTS_SANITIZED
// Declared here, because only clang has a header for it.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#elif defined(__APPLE__)
#include <malloc/malloc.h>
#else
#include <malloc.h>
#endif

namespace test {

std::size_t heapInUse() {
#if TESTS_SANITIZED
  return __sanitizer_get_current_allocated_bytes();
#elif defined(__APPLE__)
  malloc_statistics_t statistics;
  ::malloc_zone_statistics(nullptr, &statistics);
  return statistics.size_in_use;
#else
  return ::mallinfo2().uordblks;
#endif
}

}  // namespace test
