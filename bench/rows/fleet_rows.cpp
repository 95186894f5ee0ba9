#include <filesystem>

#include "bench/check.h"
#include "bench/child_process.h"
#include "bench/row.h"
#include "bench/rows/row_groups.h"
#include "bench/sample_agent.h"
#include "bench/sample_lists.h"

namespace bench {
namespace {

constexpr std::size_t c_few = 100;
constexpr std::size_t c_many = 5000;
constexpr int c_variants = 50;

// Returns a directory with that many lists of twelve sites. The first call writes them. No two of
// them have the same bytes.
std::string fleetOf(std::size_t count) {
  const std::string directory = inEtc("fleet-" + std::to_string(count));
  if (std::filesystem::exists(directory)) return directory;
  for (std::size_t i = 0; i < count; ++i) {
    const std::string endpoint = directory + "/endpoint-" + std::to_string(i);
    std::filesystem::create_directories(endpoint);
    writeFile(endpoint + "/SiteList.xml",
              readFile(sitesFile(12, static_cast<int>(i) % c_variants)) + "<!-- " +
                  std::to_string(i) + " -->\n");
  }
  return directory;
}

// Returns a Cost that prints the rows of all lists.
std::function<double()> printing(const std::string& program, std::size_t count) {
  const std::string tool = std::filesystem::path(program).replace_filename("sitelist").string();
  return [words = std::vector<std::string>{tool, "--agent-dir", agentDirectory(), "--quiet",
                                           "--format", "jsonl", "show", fleetOf(count)}] {
    return runProgram(words);
  };
}

Cost timeOfEachList(const std::string& program, std::size_t count) {
  const Cost time = timed([run = printing(program, count)] { run(); });
  return [time, count] { return time() / static_cast<double>(count); };
}

Cost limit(double value) {
  return [value] { return value; };
}

}  // namespace

void addFleetRows(const char* program) {
  const std::string self = program;
  addRow({"fleet: sitelist show --format jsonl, 5000 lists of 12 sites, each list",
          "each of 100 lists", 1.2, 15, [self] {
            return Measurement{timeOfEachList(self, c_many), timeOfEachList(self, c_few)};
          }});
  addRow({"fleet: sitelist show --format jsonl, 5000 lists of 12 sites", "2 s", 1.0, 15, [self] {
            return Measurement{timed([run = printing(self, c_many)] { run(); }), limit(2e9)};
          }});
  addRow({"fleet: peak memory of sitelist show --format jsonl, 5000 lists", "200 MiB", 1.0, 5,
          [self] {
            return Measurement{printing(self, c_many), limit(200.0 * 1024)};
          },
          "KiB"});
}

}  // namespace bench
