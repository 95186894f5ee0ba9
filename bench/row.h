#ifndef BENCH_ROW_H
#define BENCH_ROW_H

#include <functional>
#include <string>
#include <vector>

// One row of the table: the cost of an operation as a multiple of the cost of a baseline. The same
// process runs both alternately on the same bytes, so that a disturbance affects both.
namespace bench {

// Runs once and returns the cost, in the unit of the row.
using Cost = std::function<double()>;

struct Measurement {
  Cost subject;
  Cost floor;
};

struct Row {
  std::string name;
  std::string against;
  double bound = 0;  // the largest accepted ratio; 0: for comparison only
  int samples = 0;   // 1: the costs are exact, so the row is measured once, without a first run
  std::function<Measurement()> prepare;
  const char* unit = "ns";
};

void addRow(Row row);
const std::vector<Row>& rows();

// Returns a Cost that runs `action` `runs` times and gives the average nanoseconds of one run.
Cost timed(std::function<void()> action, int runs = 1);
// Does the same for one run. `before` is called first and is not measured.
Cost timedAfter(std::function<void()> before, std::function<void()> action);

// Prevents the compiler from removing the computation of an unused value.
template <typename T>
void keep(const T& value) {
  asm volatile("" : : "r,m"(value) : "memory");
}

}  // namespace bench

#endif
