#ifndef TESTS_RESILIENCE_KILLS_H
#define TESTS_RESILIENCE_KILLS_H

#include "tests/resilience/experiment.h"

namespace test {

struct KillFigures {
  unsigned long kills = 0;
  unsigned long leftOvers = 0;   // kills that left a temporary file
  unsigned long unfinished = 0;  // kills in the middle of an operation that had written something
  Faults faults;
};

// Kills a writer just before each of its file-system calls, operation by operation.
KillFigures killBeforeEveryCall(const Progress& progress = nullptr);

// Kills a process that writes in a loop after a random time, this many times.
KillFigures killAtAnyMoment(unsigned long kills, unsigned int seed,
                            const Progress& progress = nullptr);

}  // namespace test

#endif
