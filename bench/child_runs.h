#ifndef BENCH_CHILD_RUNS_H
#define BENCH_CHILD_RUNS_H

namespace bench {

// Runs the measurement for which addMemoryRows started this program. Returns false if this program
// was started for another reason.
bool runAsChild(int argc, char** argv);

}  // namespace bench

#endif
