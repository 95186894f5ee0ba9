#ifndef TESTS_RESILIENCE_KILLS_H
#define TESTS_RESILIENCE_KILLS_H

#include "tests/resilience/experiment.h"

namespace test {

struct KillFigures {
  unsigned long kills = 0;
  unsigned long leftOvers = 0;   // kills that left a temporary file
  unsigned long unfinished = 0;  // kills after an operation had written something
  Faults faults;
};

// Kills a writer before each of its file-system calls, one operation after the other.
KillFigures killBeforeEveryCall(const Progress& progress = nullptr);

// Kills a process that writes in a loop, each time after a random time.
KillFigures killAtAnyMoment(unsigned long kills, unsigned int seed,
                            const Progress& progress = nullptr);

}  // namespace test

#endif
