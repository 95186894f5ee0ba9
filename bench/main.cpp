#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

#include "bench/child_runs.h"
#include "bench/row.h"
#include "bench/row_groups.h"
#include "bench/sample_agent.h"

// Measures one or all rows of the table. Each row is a benchmark named "operation / baseline". Its
// counter "ratio" is the median of all samples.
//   sitehlp-bench DIRECTORY [options of Google Benchmark]
// DIRECTORY is the data directory of the measured agent. The program creates the agent's files that
// are missing, and does not remove them.
namespace bench {
namespace {

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void measure(benchmark::State& state, const Row& row) {
  const Measurement measurement = row.prepare();
  measurement.floor();
  measurement.subject();
  std::vector<double> ratios;
  std::vector<double> subjects;
  std::vector<double> floors;
  bool subjectFirst = false;
  for ([[maybe_unused]] auto _ : state) {
    double subject = 0;
    double floor = 0;
    if (subjectFirst) subject = measurement.subject();
    floor = measurement.floor();
    if (!subjectFirst) subject = measurement.subject();
    subjectFirst = !subjectFirst;
    state.SetIterationTime(subject * 1e-9);
    ratios.push_back(subject / floor);
    subjects.push_back(subject);
    floors.push_back(floor);
  }
  state.counters["ratio"] = median(ratios);
  state.counters["bound"] = row.bound;
  state.counters["subject"] = median(subjects);
  state.counters["floor"] = median(floors);
  state.SetLabel(row.unit);
}

class TableReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      const double ratio = run.counters.at("ratio");
      const double bound = run.counters.at("bound");
      const char* const verdict = bound == 0 ? "for comparison" : ratio <= bound ? "met" : "MISSED";
      std::string limit = "-";
      if (bound != 0) {
        char text[32];
        std::snprintf(text, sizeof text, "%.2f", bound);
        limit = text;
      }
      const std::string name = run.run_name.function_name;
      const std::size_t slash = name.find(" / ");
      std::printf("| %s | %s | %.2f | %s | %s | %s | %s |\n", name.substr(0, slash).c_str(),
                  name.substr(slash + 3).c_str(), ratio, limit.c_str(), verdict,
                  shown(run.counters.at("subject"), run.report_label).c_str(),
                  shown(run.counters.at("floor"), run.report_label).c_str());
    }
    std::fflush(stdout);
  }

 private:
  static std::string shown(double cost, const std::string& unit) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*f ", cost < 10000 ? 3 : 0, cost / 1000);
    return text + unit;
  }
};

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  if (bench::runAsChild(argc, argv)) return 0;
  if (argc < 2 || argv[1][0] == '-') {
    std::fprintf(stderr, "usage: sitehlp-bench DIRECTORY [--benchmark_...]\n");
    return 2;
  }
  bench::serveSampleAgent(argv[1]);
  std::rotate(argv + 1, argv + 2, argv + argc);
  --argc;

  bench::addReadRows();
  bench::addWriteRows();
  bench::addMergeRows();
  bench::addEditRows();
  bench::addGrowthRows();
  bench::addMemoryRows(argv[0]);
  bench::addProcessRows(argv[0]);
  bench::addTraceRows();
  for (const bench::Row& row : bench::rows()) {
    benchmark::RegisterBenchmark((row.name + " / " + row.against).c_str(), bench::measure, row)
        ->Iterations(row.samples)
        ->UseManualTime();
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  bench::TableReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}
