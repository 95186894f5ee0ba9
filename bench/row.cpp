#include "bench/row.h"

#include <chrono>
#include <utility>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

double nanosecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

std::vector<Row>& table() {
  static std::vector<Row> table;
  return table;
}

}  // namespace

void addRow(Row row) { table().push_back(std::move(row)); }

const std::vector<Row>& rows() { return table(); }

Cost timed(std::function<void()> action, int runs) {
  return [action = std::move(action), runs] {
    const Clock::time_point start = Clock::now();
    for (int i = 0; i < runs; ++i) action();
    return nanosecondsSince(start) / runs;
  };
}

Cost timedAfter(std::function<void()> before, std::function<void()> action) {
  return [before = std::move(before), action = std::move(action)] {
    before();
    const Clock::time_point start = Clock::now();
    action();
    return nanosecondsSince(start);
  };
}

}  // namespace bench
