#include "tests/support/heap.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// Its header comes with clang alone.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#elif defined(__APPLE__)
#include <malloc/malloc.h>
#else
#include <malloc.h>
#endif

namespace test {

std::size_t heapInUse() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
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
