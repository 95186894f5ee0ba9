#ifndef TESTS_RESILIENCE_POWER_CUT_H
#define TESTS_RESILIENCE_POWER_CUT_H

#include <cstddef>

#include "tests/resilience/experiment.h"

namespace test {

struct PowerCutFigures {
  unsigned long states = 0;     // an operation, a moment and a set of lost effects
  unsigned long distinct = 0;   // different contents of the disk
  unsigned long between = 0;    // neither the content before the operation nor that after it
  unsigned long restarted = 0;  // written to the disk for another run of the operation
  Faults faults;
};

struct PowerCutPlan {
  std::size_t bytesAtATime;    // size of the pieces of a write
  std::size_t choicesEach;     // largest number of sets at one moment
  unsigned long restartEvery;  // number of states between two restarts
};

// Cuts the power after every recorded change of every writing operation. Tries every set of lost
// effects, or a number of random sets.
PowerCutFigures cutPower(const PowerCutPlan& plan, const Progress& progress = nullptr);

}  // namespace test

#endif
