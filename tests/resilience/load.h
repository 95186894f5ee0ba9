#ifndef TESTS_RESILIENCE_LOAD_H
#define TESTS_RESILIENCE_LOAD_H

#include "tests/resilience/experiment.h"

namespace test {

// The results of one writer and many readers. Each reader holds the lock for 2 ms and then locks
// again immediately.
struct CrowdFigures {
  unsigned long writes = 0;
  unsigned long reads = 0;
  double worstWaitMs = 0;
  double meanWaitMs = 0;
};
CrowdFigures writeAmongReaders(int readers, int seconds);

// The results of several concurrent writers and readers.
struct WriterFigures {
  unsigned long leastWrites = 0;  // of the slowest writer
  unsigned long leastReads = 0;   // of the slowest reader
  unsigned long writes = 0;
  unsigned long reads = 0;
};
WriterFigures writeAtOnce(int writers, int readers, int seconds);

// The results of processes that read and write lists in random order. Every read must find one
// complete list, and never an older one than the read before.
struct MixedFigures {
  unsigned long operations = 0;
  unsigned long versions = 0;
  Faults faults;
};
MixedFigures mixOperations(int processes, unsigned long operationsEach);

// The results of killing the process that holds the lock, several times.
struct HolderFigures {
  unsigned long kills = 0;
  double worstWaitMs = 0;  // of the process that gets the lock next
};
HolderFigures killHolders(unsigned long kills, const Progress& progress = nullptr);

}  // namespace test

#endif
