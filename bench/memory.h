#ifndef BENCH_MEMORY_H
#define BENCH_MEMORY_H

#include "bench/row.h"

// Controls for the allocator of the C library. A new page costs more than reading a site, so the
// cost of a run depends on which freed memory the allocator kept. By default this depends on the
// previous runs.
namespace bench {

// Returns freed memory to the system, so that the next run begins as in a new process.
void letMemoryGo();

// Calls letMemoryGo before each run.
Cost withNewMemory(const Cost& cost);

// From now on, the allocator keeps all freed memory.
void keepFreedMemory();

}  // namespace bench

#endif
