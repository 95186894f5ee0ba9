#ifndef TESTS_THREADS_PAIRS_H
#define TESTS_THREADS_PAIRS_H

#include <cstddef>
#include <string>

#include "tests/resilience/experiment.h"

// Two operations at the same time, each on a thread and an instance of its own.
namespace test {

struct PairFigures {
  Faults faults;
  unsigned long pairs = 0;
  unsigned long runs = 0;  // of single operations
};

// The pairs are dealt out to so many parts.
constexpr std::size_t c_parts = 4;
std::size_t numberOfPairs();

// Runs each pair of operations of one part, an operation beside itself included, until one of the
// two ran `times` times while the other one was at work. Each result has to be one that the
// operation gives alone, or behind the other one. The pairs run in processes of their own, so that
// a crash is a fault with a name.
PairFigures runPairs(std::size_t part, unsigned long times);

}  // namespace test

#endif
