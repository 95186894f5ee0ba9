#ifndef BENCH_CHECK_H
#define BENCH_CHECK_H

#include <cstdio>
#include <cstdlib>

namespace bench {

// Ends the program with a message if a step failed.
inline void check(bool done, const char* otherwise) {
  if (done) return;
  std::fprintf(stderr, "sitehlp-bench: %s\n", otherwise);
  std::abort();
}

}  // namespace bench

#endif
