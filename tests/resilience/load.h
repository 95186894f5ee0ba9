#ifndef TESTS_RESILIENCE_LOAD_H
#define TESTS_RESILIENCE_LOAD_H

#include "tests/resilience/experiment.h"

namespace test {

// One writer among readers that hold the lock for 2 ms and lock again at once.
struct CrowdFigures {
  unsigned long writes = 0;
  unsigned long reads = 0;
  double worstWaitMs = 0;
  double meanWaitMs = 0;
};
CrowdFigures writeAmongReaders(int readers, int seconds);

// Writers that write at once, and readers beside them.
struct WriterFigures {
  unsigned long leastWrites = 0;  // of a writer
  unsigned long leastReads = 0;   // of a reader
  unsigned long writes = 0;
  unsigned long reads = 0;
};
WriterFigures writeAtOnce(int writers, int readers, int seconds);

// Processes that read and write lists as they like. Every read must find one committed list whole,
// and never an older one than the read before.
struct MixedFigures {
  unsigned long operations = 0;
  unsigned long versions = 0;
  Faults faults;
};
MixedFigures mixOperations(int processes, unsigned long operationsEach);

// Kills whoever holds the lock, this many times.
struct HolderFigures {
  unsigned long kills = 0;
  double worstWaitMs = 0;  // of the next one
};
HolderFigures killHolders(unsigned long kills, const Progress& progress = nullptr);

}  // namespace test

#endif
