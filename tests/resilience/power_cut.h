#ifndef TESTS_RESILIENCE_POWER_CUT_H
#define TESTS_RESILIENCE_POWER_CUT_H

#include <cstddef>

#include "tests/resilience/experiment.h"

namespace test {

struct PowerCutFigures {
  unsigned long states = 0;     // operation, moment and choice of what was lost
  unsigned long distinct = 0;   // different contents of the disk among them
  unsigned long between = 0;    // neither as before the operation nor as after it
  unsigned long restarted = 0;  // put on the disk, and the operation run on them
  Faults faults;
};

struct PowerCutPlan {
  std::size_t bytesAtATime;    // of each write
  std::size_t choicesEach;     // at most, of what is lost at one moment
  unsigned long restartEvery;  // state
};

// Cuts the power behind every recorded change of every writing operation, with every choice (or so
// many random ones) of what had not come to the disk.
PowerCutFigures cutPower(const PowerCutPlan& plan, const Progress& progress = nullptr);

}  // namespace test

#endif
