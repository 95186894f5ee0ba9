#ifndef TESTS_RESILIENCE_FAULTS_H
#define TESTS_RESILIENCE_FAULTS_H

#include "tests/resilience/experiment.h"

namespace test {

struct FaultFigures {
  unsigned long runs = 0;
  unsigned long refused = 0;    // reported as failed
  unsigned long cleanedUp = 0;  // runs that left a temporary file; the next call removed it
  Faults faults;
};

// The errors with which each call fails: one error that changes from call to call, or every error.
enum class Errors { OneEach, Every };

// For every writing and reading operation: makes each file-system call fail, alone or with all
// later calls. Checks the files afterwards.
FaultFigures failEveryCall(Errors errors, const Progress& progress = nullptr);

// Limits reads and writes to a few bytes at a time. The disk becomes full after each of the first
// writes.
FaultFigures moveFewBytes(const Progress& progress = nullptr);

}  // namespace test

#endif
