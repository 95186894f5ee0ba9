#ifndef TESTS_RESILIENCE_FORKS_H
#define TESTS_RESILIENCE_FORKS_H

#include <cstddef>

#include "tests/resilience/experiment.h"

namespace test {

// Forks a process whose threads protect passwords, log, lock, read and write all the time. Each
// child must do every public operation.
struct ForkFigures {
  unsigned long forks = 0;
  unsigned long hung = 0;  // children that were not done in time
  Faults faults;
};
ForkFigures forkBesideThreads(unsigned long forks, const Progress& progress = nullptr);

// A process without threads forks, its child does so, and so on. Each does every public operation.
struct GenerationFigures {
  std::size_t heapOfFirst = 0;  // in bytes, behind the operations
  std::size_t heapOfLast = 0;
  Faults faults;
};
GenerationFigures forkGenerations(unsigned int generations);

}  // namespace test

#endif
