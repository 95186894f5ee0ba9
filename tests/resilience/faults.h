#ifndef TESTS_RESILIENCE_FAULTS_H
#define TESTS_RESILIENCE_FAULTS_H

#include "tests/resilience/experiment.h"

namespace test {

struct FaultFigures {
  unsigned long runs = 0;
  unsigned long refused = 0;    // reported as failed
  unsigned long cleanedUp = 0;  // left a temporary file that the next call removed
  Faults faults;
};

// Which errors each call fails with: one, a different one from call to call, or every one.
enum class Errors { OneEach, Every };

// Lets every file-system call of every writing and every reading operation fail in turn, once and
// for good, and looks at what is left.
FaultFigures failEveryCall(Errors errors, const Progress& progress = nullptr);

// Lets reads and writes move a few bytes at a time, and the disk fill up behind each of the first
// ones.
FaultFigures moveFewBytes(const Progress& progress = nullptr);

}  // namespace test

#endif
