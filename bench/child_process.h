#ifndef BENCH_CHILD_PROCESS_H
#define BENCH_CHILD_PROCESS_H

#include <string>
#include <vector>

namespace bench {

// Runs a program found by the search path, with its standard output in a file, and waits for its
// end, which must be a good one. The most memory that it had at once, in KiB (on a Mac in bytes).
double runProgram(std::vector<std::string> words, const std::string& output = "/dev/null");

}  // namespace bench

#endif
