#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>

#include "bench/check.h"
#include "bench/child_process.h"
#include "bench/row.h"
#include "bench/rows/row_groups.h"
#include "bench/sample_agent.h"
#include "bench/sample_lists.h"

namespace bench {
namespace {

using Words = std::vector<std::string>;

Cost running(const Words& words) {
  return timed([words] { runProgram(words); });
}

// Omits lines with passwords, because the Python script does not decrypt them. Omits white space,
// because the tool prints a short array in one line.
std::string outputOf(const Words& words) {
  const std::string file = inEtc("output");
  runProgram(words, file);
  std::istringstream lines(readFile(file));
  std::string kept;
  for (std::string line; std::getline(lines, line);) {
    if (line.find("assword\"") != std::string::npos) continue;
    std::copy_if(line.begin(), line.end(), std::back_inserter(kept),
                 [](char character) { return character != ' '; });
  }
  return kept;
}

// Makes the list with that many sites the agent's own list.
std::string ownList(std::size_t count) {
  writeFile(inEtc("SiteList.xml"), readFile(sitesFile(count)));
  return inEtc("SiteList.xml");
}

Words toolWords(const std::string& program, const Words& words) {
  Words all = {std::filesystem::path(program).replace_filename("sitelist").string(), "--agent-dir",
               agentDirectory()};
  all.insert(all.end(), words.begin(), words.end());
  return all;
}

void addJsonRow(const std::string& program, std::size_t count, int samples) {
  addRow({"sitelist show --json, " + std::to_string(count) + " sites, whole process",
          "Python ElementTree printing the same JSON", 0.5, samples, [program, count] {
            const Words tool = toolWords(program, {"show", "--json"});
            const Words script = {BENCH_PYTHON, BENCH_SOURCE_DIR "/show_json.py", ownList(count)};
            check(outputOf(tool) == outputOf(script), "tool and script print different JSON");
            return Measurement{running(tool), running(script)};
          }});
}

}  // namespace

void addProcessRows(const char* program) {
  const std::string self = program;
  addRow({"sitelist show, 12 sites, whole process", "xmllint --noout", 2.0, 200, [self] {
            const std::string list = ownList(12);
            return Measurement{running(toolWords(self, {"show"})),
                               running({"xmllint", "--noout", list})};
          }});
  for (const std::size_t count : {12, 100, 1000}) addJsonRow(self, count, 40);
  addJsonRow(self, 10000, 9);
}

}  // namespace bench
