#ifndef BENCH_GROWTH_OPERATIONS_H
#define BENCH_GROWTH_OPERATIONS_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace bench {

// A run of an operation that can be repeated. `before` comes before each run and is not measured.
struct Repeatable {
  std::function<void()> before;
  std::function<void()> run;
};

// An operation whose cost depends on the number of elements in its list.
struct GrowthOperation {
  std::string name;
  int samples;
  Repeatable (*prepare)(std::size_t elements);
};

// The operations of the library.
const std::vector<GrowthOperation>& growthOperations();

}  // namespace bench

#endif
