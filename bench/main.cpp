#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

#include "bench/child_runs.h"
#include "bench/row.h"
#include "bench/rows/row_groups.h"
#include "bench/sample_agent.h"

// Measures one or all rows of the table. Each row is a benchmark named "operation / baseline". Its
// counter "ratio" is the median of all samples, and "low" and "high" are the quartiles.
//   sitehlp-bench DIRECTORY [options of Google Benchmark]
// DIRECTORY is the data directory of the measured agent. The program creates the agent's files that
// are missing, and does not remove them.
namespace bench {
namespace {

constexpr const char* c_separator = " / ";

double quantile(std::vector<double>& values, double part) {
  const auto place =
      values.begin() + static_cast<std::ptrdiff_t>(static_cast<double>(values.size() - 1) * part);
  std::nth_element(values.begin(), place, values.end());
  return *place;
}

void measure(benchmark::State& state, const Row& row) {
  const Measurement measurement = row.prepare();
  if (row.samples > 1) {
    measurement.floor();
    measurement.subject();
  }
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
  state.counters["ratio"] = quantile(ratios, 0.5);
  state.counters["low"] = quantile(ratios, 0.25);
  state.counters["high"] = quantile(ratios, 0.75);
  state.counters["bound"] = row.bound;
  state.counters["subject"] = quantile(subjects, 0.5);
  state.counters["floor"] = quantile(floors, 0.5);
  state.SetLabel(row.unit);
}

// Prints the raw output. scripts/bench names its columns.
class RawReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      const std::string name = run.run_name.function_name;
      const std::size_t slash = name.find(c_separator);
      std::printf("%s\t%s", name.substr(0, slash).c_str(),
                  name.substr(slash + std::string(c_separator).size()).c_str());
      for (const char* const counter : {"ratio", "low", "high", "bound"}) {
        std::printf("\t%.3f", run.counters.at(counter).value);
      }
      for (const char* const cost : {"subject", "floor"}) {
        std::printf("\t%.1f", run.counters.at(cost).value);
      }
      std::printf("\t%s\t%lld\n", run.report_label.c_str(), static_cast<long long>(run.iterations));
    }
    std::fflush(stdout);
  }
};

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  if (bench::runPeakAsChild(argc, argv) || bench::runCountAsChild(argc, argv)) return 0;
  if (argc < 2 || argv[1][0] == '-') {
    std::fprintf(stderr, "usage: sitehlp-bench DIRECTORY [--benchmark_...]\n");
    return 2;
  }
  bench::serveSampleAgent(argv[1]);
  bench::fetchCipher();
  std::rotate(argv + 1, argv + 2, argv + argc);
  --argc;

  bench::addReadRows();
  bench::addPeerRows();
  bench::addWriteRows();
  bench::addMergeRows();
  bench::addEditRows();
  bench::addGrowthRows(argv[0]);
  bench::addMemoryRows(argv[0]);
  bench::addProcessRows(argv[0]);
  bench::addFleetRows(argv[0]);
  bench::addTraceRows();
  for (const bench::Row& row : bench::rows()) {
    benchmark::RegisterBenchmark((row.name + bench::c_separator + row.against).c_str(),
                                 bench::measure, row)
        ->Iterations(row.samples)
        ->UseManualTime();
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  bench::RawReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}
