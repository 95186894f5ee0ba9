#ifndef BENCH_MEMORY_H
#define BENCH_MEMORY_H

#include "bench/row.h"

// What the allocator of the C library does with memory that was freed decides what the next run
// costs: a page fetched anew costs more than reading a site. By default it keeps some and gives the
// rest back, by thresholds that depend on what ran before.
namespace bench {

// Gives back what was freed, so that what follows starts as a new process does.
void letMemoryGo();

// Does that before each run.
Cost withNewMemory(const Cost& cost);

// From now on all is kept.
void keepFreedMemory();

}  // namespace bench

#endif
