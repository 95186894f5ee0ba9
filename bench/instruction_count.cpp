#include "bench/instruction_count.h"

#include <algorithm>
#include <cstdlib>

#include "bench/check.h"
#include "bench/child_process.h"
#include "bench/child_runs.h"
#include "bench/growth_operations.h"
#include "bench/memory.h"
#include "bench/sample_agent.h"

namespace bench {
namespace {

constexpr const char* c_countOne = "--count-one";
// A first run with this many elements does the work that a process does only once.
constexpr std::size_t c_fewElements = 12;

std::function<void()> g_run;

}  // namespace
}  // namespace bench

// callgrind counts the instructions of this function.
extern "C" [[gnu::noinline]] void measured() { bench::g_run(); }

namespace bench {

Cost instructionsOf(const std::string& program, const std::string& operation,
                    std::size_t elements) {
  return [=] {
    // Makes the documents, which would take long under callgrind.
    const auto& operations = growthOperations();
    const auto found =
        std::find_if(operations.begin(), operations.end(),
                     [&](const GrowthOperation& each) { return each.name == operation; });
    check(found != operations.end(), "no such operation");
    found->prepare(c_fewElements);
    found->prepare(elements);

    const std::string output = inEtc("instructions");
    runProgram({BENCH_SOURCE_DIR "/../scripts/count-instructions", program, c_countOne,
                agentDirectory(), operation, std::to_string(elements)},
               output);
    return std::strtod(readFile(output).c_str(), nullptr);
  };
}

bool runCountAsChild(int argc, char** argv) {
  if (argc != 5 || std::string(argv[1]) != c_countOne) return false;
  serveSampleAgent(argv[2]);
  fetchCipher();
  for (const GrowthOperation& operation : growthOperations()) {
    if (operation.name != argv[3]) continue;
    const Repeatable first = operation.prepare(c_fewElements);
    first.before();
    first.run();
    const Repeatable repeatable = operation.prepare(std::strtoul(argv[4], nullptr, 10));
    repeatable.before();
    letMemoryGo();
    g_run = repeatable.run;
    measured();
    return true;
  }
  check(false, "no such operation");
  return false;
}

}  // namespace bench
