#ifndef BENCH_CHILD_PROCESS_H
#define BENCH_CHILD_PROCESS_H

#include <string>
#include <vector>

namespace bench {

// Runs a program found by the search path, with its standard output in a file, and waits for its
// end. Ends this program if the other one fails. Returns the largest memory use of the other
// program, in KiB (on macOS in bytes).
double runProgram(std::vector<std::string> words, const std::string& output = "/dev/null");

}  // namespace bench

#endif
