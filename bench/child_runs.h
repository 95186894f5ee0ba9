#ifndef BENCH_CHILD_RUNS_H
#define BENCH_CHILD_RUNS_H

namespace bench {

// Does what addMemoryRows started this program for; false when it was started for something else.
bool runAsChild(int argc, char** argv);

}  // namespace bench

#endif
