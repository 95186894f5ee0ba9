#include <cstdio>
#include <functional>
#include <map>
#include <string>

#include "bench/check.h"
#include "bench/edits.h"
#include "bench/sample_agent.h"
#include "bench/sample_lists.h"
#include "sitehlp/sites_helper.h"

// Runs one operation. callgrind counts the instructions of `measured`.
//   sitehlp-count DIRECTORY OPERATION
// Without an operation it prints the names of all.

using sitehlp::CSitesHelper;
using sitehlp::tag_Site;

namespace {

std::function<void()> g_operation;

}  // namespace

extern "C" [[gnu::noinline]] void measured() { g_operation(); }

namespace {

using bench::check;
using bench::widePath;

// Prepares and returns an operation. main runs it once before the measurement.
using Setup = std::function<std::function<void()>()>;

std::function<void()> reading(std::size_t count, bench::Passwords passwords) {
  return [path = widePath(bench::sitesFile(count, 0, passwords))] {
    CSitesHelper helper(true);
    tag_Site* list = nullptr;
    check(helper.ReadSiteList(path, &list, true) == 0, "cannot read the list");
    CSitesHelper::FreeSiteListMemory(list);
  };
}

std::function<void()> readingVersions() {
  return [path = widePath(bench::sitesFile(12))] { const CSitesHelper helper(path); };
}

std::function<void()> smartReading() {
  return [path = widePath(bench::sitesFile(12))] {
    tag_Site* list = nullptr;
    check(CSitesHelper(true).SmartReadSiteList(path, &list) == 0, "cannot read the list");
  };
}

std::function<void()> writing() {
  return [list = bench::makeSites(100), path = widePath(bench::inEtc("written.xml"))] {
    check(CSitesHelper(true).CreateSiteList(list, path, L"1", L"1", L"Client", {}) == 0,
          "cannot write the list");
  };
}

std::function<void()> merging() {
  return [first = bench::makeSites(100, 1), second = bench::makeSites(100, 2)] {
    tag_Site* merged = nullptr;
    check(CSitesHelper(true).MergeSiteLists(first, second, true, &merged) == 0,
          "cannot merge the lists");
    CSitesHelper::FreeSiteListMemory(merged);
  };
}

std::function<void()> importing() {
  const std::wstring own = widePath(bench::agentDirectory() + "/own/SiteList.xml");
  for (const char* key : {"srpubkey.bin", "reqseckey.bin"}) {
    bench::writeFile(bench::inEtc(key), std::string(256, 'k'));
  }
  return [own, incoming = widePath(bench::sitesFile(12))] {
    check(CSitesHelper(own).ImportSiteList(incoming, L"") == 0, "cannot import the list");
  };
}

std::function<void()> modifying() {
  return bench::modifyOf(bench::sitesFile(100), bench::sitesFile(12, 1)).perform;
}

std::function<void()> deriving() { return bench::deriveOf(bench::sitesFile(100)).perform; }

const std::map<std::string, Setup> c_operations = {
    {"read-12", [] { return reading(12, bench::Passwords::Protected); }},
    {"read-100-plain", [] { return reading(100, bench::Passwords::None); }},
    {"versions-12", readingVersions},
    {"smart-read", smartReading},
    {"write-100", writing},
    {"merge-100", merging},
    {"import-12", importing},
    {"modify-100", modifying},
    {"derive-100", deriving},
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    for (const auto& [name, setup] : c_operations) std::puts(name.c_str());
    return argc == 1 ? 0 : 2;
  }
  const auto found = c_operations.find(argv[2]);
  check(found != c_operations.end(), "no such operation");
  bench::serveSampleAgent(argv[1]);
  g_operation = found->second();
  g_operation();
  measured();
  return 0;
}
