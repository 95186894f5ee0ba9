#ifndef BENCH_ROW_H
#define BENCH_ROW_H

#include <functional>
#include <string>
#include <vector>

// One line of the table: what an operation costs as a multiple of a floor, both done in turn by the
// same process on the same bytes, so that what disturbs the machine disturbs both.
namespace bench {

// Runs once and returns what it cost: nanoseconds, or KiB where memory is measured.
using Cost = std::function<double()>;

struct Measurement {
  Cost subject;
  Cost floor;
};

struct Row {
  std::string name;
  std::string against;
  double bound = 0;  // the highest ratio that is good; 0: told for comparison only
  int samples = 0;
  std::function<Measurement()> prepare;
  const char* unit = "us";  // of a thousand
};

void addRow(Row row);
const std::vector<Row>& rows();

// Nanoseconds for one run of `action`, taken over `runs` of them in a row.
Cost timed(std::function<void()> action, int runs = 1);
// The same for one run, with a step before each that does not count.
Cost timedAfter(std::function<void()> before, std::function<void()> action);

// Keeps the compiler from dropping what nobody looks at.
template <typename T>
void keep(const T& value) {
  asm volatile("" : : "r,m"(value) : "memory");
}

}  // namespace bench

#endif
