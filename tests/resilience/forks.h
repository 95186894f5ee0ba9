#ifndef TESTS_RESILIENCE_FORKS_H
#define TESTS_RESILIENCE_FORKS_H

#include <cstddef>

#include "tests/resilience/experiment.h"

namespace test {

// The results of forks in a process whose threads encrypt passwords, log, lock, read and write all
// the time. They also replace the cached list and use the local time. Each child must complete
// every public operation.
struct ForkFigures {
  unsigned long forks = 0;
  unsigned long hung = 0;  // children that did not end in time
  Faults faults;
};
ForkFigures forkBesideThreads(unsigned long forks, const Progress& progress = nullptr);

// The results of a chain of forks without threads. Each process must complete every public
// operation and then fork the next one.
struct GenerationFigures {
  std::size_t heapOfFirst = 0;  // bytes after the operations
  std::size_t heapOfLast = 0;
  Faults faults;
};
GenerationFigures forkGenerations(unsigned int generations);

}  // namespace test

#endif
