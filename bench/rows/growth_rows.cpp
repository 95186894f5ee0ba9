#include "bench/floors.h"
#include "bench/fresh_documents.h"
#include "bench/growth_operations.h"
#include "bench/instruction_count.h"
#include "bench/memory.h"
#include "bench/row.h"
#include "bench/rows/row_groups.h"
#include "bench/sample_agent.h"
#include "bench/sample_lists.h"

namespace bench {
namespace {

constexpr std::size_t c_small = 1000;
constexpr std::size_t c_large = 10000;
// The largest accepted ratio of the instruction counts. Times also depend on the caches.
constexpr double c_bound = 10.5;
constexpr const char* c_against = "the same with 1000";

// Begins each run with the memory of a new process.
Cost timedInNewMemory(const Repeatable& repeatable) {
  const auto before = [repeatable] {
    repeatable.before();
    letMemoryGo();
  };
  return timedAfter(before, repeatable.run);
}

void addInstructionRow(const std::string& program, const GrowthOperation& operation) {
  addRow({operation.name + ", 10000 elements, instructions", c_against, c_bound, 1,
          [program, name = operation.name] {
            return Measurement{instructionsOf(program, name, c_large),
                               instructionsOf(program, name, c_small)};
          },
          "instructions"});
}

void addTimeRow(const GrowthOperation& operation) {
  addRow({operation.name + ", 10000 elements, time", c_against, 0, operation.samples, [operation] {
            return Measurement{timedInNewMemory(operation.prepare(c_large)),
                               timedInNewMemory(operation.prepare(c_small))};
          }});
}

Cost rewriting(std::size_t count) {
  return withNewMemory(timed([bytes = readFile(sitesFile(count)), path = inEtc("rewritten.xml")] {
    rewriteChecked(bytes, path);
  }));
}

}  // namespace

void addGrowthRows(const char* program) {
  for (const GrowthOperation& operation : growthOperations()) {
    addInstructionRow(program, operation);
    addTimeRow(operation);
  }
  // The baseline of the edits.
  addRow({"expat, empty handlers + pugixml: parse, print, atomic write, 10000 elements, time",
          c_against, 0, 9, [] {
            return Measurement{rewriting(c_large), rewriting(c_small)};
          }});
}

}  // namespace bench
