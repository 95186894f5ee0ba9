#ifndef TESTS_THREADS_PAIRS_H
#define TESTS_THREADS_PAIRS_H

#include <cstddef>
#include <string>

#include "tests/resilience/experiment.h"

// Runs two operations at the same time, each with its own thread and instance.
namespace test {

struct PairFigures {
  Faults faults;
  unsigned long pairs = 0;
  unsigned long runs = 0;  // single operations
};

// The number of parts into which the pairs are divided.
constexpr std::size_t c_parts = 4;
std::size_t numberOfPairs();

// Runs each pair of operations of one part, including pairs of an operation with itself. A pair
// ends when one operation has run `times` times and the other one at least five times. Each result
// must be one that the operation gives alone, after itself or after the other one. A child process
// runs the pairs. After a crash, which is reported as a fault of its pair, another child continues
// with the next pair.
PairFigures runPairs(std::size_t part, unsigned long times);

}  // namespace test

#endif
