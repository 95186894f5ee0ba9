#ifndef BENCH_INSTRUCTION_COUNT_H
#define BENCH_INSTRUCTION_COUNT_H

#include <cstddef>
#include <string>

#include "bench/row.h"

namespace bench {

// Returns the instructions of one run of a GrowthOperation, counted by callgrind in a process of
// its own. `program` is the path of this program.
Cost instructionsOf(const std::string& program, const std::string& operation, std::size_t elements);

}  // namespace bench

#endif
