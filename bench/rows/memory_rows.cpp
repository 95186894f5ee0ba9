#include "bench/check.h"
#include "bench/child_process.h"
#include "bench/child_runs.h"
#include "bench/row.h"
#include "bench/rows/row_groups.h"
#include "bench/sample_agent.h"
#include "bench/sample_lists.h"
#include "sitehlp/sites_helper.h"

namespace bench {
namespace {

using sitehlp::CSitesHelper;
using sitehlp::tag_Site;

constexpr std::size_t c_count = 10000;
constexpr const char* c_readList = "--peak-of-reading";
constexpr const char* c_fillRecords = "--peak-of-records";

Cost peakOf(const std::string& program, const std::string& what) {
  return [words = std::vector<std::string>{program, what, agentDirectory(), sitesFile(c_count)}] {
    return runProgram(words);
  };
}

void readList(const std::string& file) {
  CSitesHelper helper(true);
  tag_Site* list = nullptr;
  check(helper.ReadSiteList(widePath(file), &list, true) == 0, "cannot read the list");
  keep(list);
}

}  // namespace

bool runPeakAsChild(int argc, char** argv) {
  if (argc != 4) return false;
  const std::string what = argv[1];
  if (what != c_readList && what != c_fillRecords) return false;
  serveSampleAgent(argv[2]);
  if (what == c_readList) {
    readList(argv[3]);
  } else {
    keep(makeSites(c_count));
  }
  return true;
}

void addMemoryRows(const char* program) {
  addRow({"peak memory of ReadSiteList, 10000 sites", "the records alone", 1.25, 5,
          [program = std::string(program)] {
            return Measurement{peakOf(program, c_readList), peakOf(program, c_fillRecords)};
          },
          "KiB"});
}

}  // namespace bench
