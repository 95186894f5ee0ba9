#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "bench/check.h"
#include "bench/edits.h"
#include "bench/fresh_documents.h"
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

struct Operation {
  std::function<void()> perform;
  std::function<void()> prepare = [] {};  // runs before each run of the operation
};

// Returns an operation. main runs it once before the measurement.
using Setup = std::function<Operation()>;

// An operation on a document that the process has not read before.
Operation onFreshDocument(const std::string& list, const bench::UseDocument& use) {
  const auto documents = std::make_shared<bench::FreshDocuments>(list, 1);
  return {[documents, use] { use(documents->paths().front()); },
          [documents] { documents->renew(); }};
}

void read(const bench::DocumentPath& path) {
  CSitesHelper helper(true);
  tag_Site* list = nullptr;
  check(helper.ReadSiteList(path.wide, &list, true) == 0, "cannot read the list");
  CSitesHelper::FreeSiteListMemory(list);
}

Operation reading(std::size_t count, bench::Passwords passwords) {
  return onFreshDocument(bench::sitesFile(count, 0, passwords), read);
}

Operation readingAgain(std::size_t count) {
  const std::string list = bench::sitesFile(count);
  const auto perform = [path = bench::DocumentPath{list, widePath(list)}] { read(path); };
  // The cipher, which a digest needs, is fetched in the first read. The second one is remembered.
  return {perform, perform};
}

Operation readingVersions() {
  return onFreshDocument(bench::sitesFile(12), [](const bench::DocumentPath& path) {
    const CSitesHelper helper(path.wide);
  });
}

Operation smartReading() {
  return {[path = widePath(bench::sitesFile(12))] {
    tag_Site* list = nullptr;
    check(CSitesHelper(true).SmartReadSiteList(path, &list) == 0, "cannot read the list");
  }};
}

Operation writing() {
  return {[list = bench::makeSites(100), path = widePath(bench::inEtc("written.xml"))] {
    check(CSitesHelper(true).CreateSiteList(list, path, L"1", L"1", L"Client", {}) == 0,
          "cannot write the list");
  }};
}

Operation merging() {
  return {[first = bench::makeSites(100, 1), second = bench::makeSites(100, 2)] {
    tag_Site* merged = nullptr;
    check(CSitesHelper(true).MergeSiteLists(first, second, true, &merged) == 0,
          "cannot merge the lists");
    CSitesHelper::FreeSiteListMemory(merged);
  }};
}

Operation importing() {
  const std::wstring own = widePath(bench::agentDirectory() + "/own/SiteList.xml");
  for (const char* key : {"srpubkey.bin", "reqseckey.bin"}) {
    bench::writeFile(bench::inEtc(key), std::string(256, 'k'));
  }
  return onFreshDocument(bench::sitesFile(12), [own](const bench::DocumentPath& incoming) {
    check(CSitesHelper(own).ImportSiteList(incoming.wide, L"") == 0, "cannot import the list");
  });
}

Operation editing(const bench::Edit& edit) { return {edit.perform, edit.restore}; }

Operation modifying() {
  return editing(bench::modifyOf(bench::sitesFile(100), bench::sitesFile(12, 1)));
}

Operation deriving() { return editing(bench::deriveOf(bench::sitesFile(100))); }

const std::map<std::string, Setup> c_operations = {
    {"read-12", [] { return reading(12, bench::Passwords::Protected); }},
    {"read-100-plain", [] { return reading(100, bench::Passwords::None); }},
    {"read-12-again", [] { return readingAgain(12); }},
    {"read-100-again", [] { return readingAgain(100); }},
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
  const Operation operation = found->second();
  g_operation = operation.perform;
  operation.prepare();
  g_operation();
  operation.prepare();
  measured();
  return 0;
}
