#ifndef BENCH_CHILD_RUNS_H
#define BENCH_CHILD_RUNS_H

// Some rows start this program again, so that each measurement has its own process. Each function
// runs the measurement for which its row started this program. It returns false if this program was
// started for another reason.
namespace bench {

bool runPeakAsChild(int argc, char** argv);
bool runCountAsChild(int argc, char** argv);

}  // namespace bench

#endif
