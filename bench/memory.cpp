#include "bench/memory.h"

#include <climits>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace bench {

void letMemoryGo() {
#if defined(__GLIBC__)
  ::malloc_trim(0);
#endif
}

Cost withNewMemory(const Cost& cost) {
  return [cost] {
    letMemoryGo();
    return cost();
  };
}

void keepFreedMemory() {
#if defined(__GLIBC__)
  ::mallopt(M_MMAP_THRESHOLD, INT_MAX);
  ::mallopt(M_TRIM_THRESHOLD, INT_MAX);
#endif
}

}  // namespace bench
