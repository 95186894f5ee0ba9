#include "bench/check.h"
#include "bench/floors.h"
#include "bench/row.h"
#include "bench/row_groups.h"
#include "bench/sample_agent.h"
#include "bench/sample_lists.h"
#include "sitehlp/sites_helper.h"

namespace bench {

using sitehlp::CSitesHelper;
using sitehlp::tag_Site;

namespace {

std::function<void()> readingOf(const std::string& path) {
  return [path = widePath(path)] {
    static CSitesHelper helper(true);
    tag_Site* list = nullptr;
    check(helper.ReadSiteList(path, &list, true) == 0, "cannot read the list");
    CSitesHelper::FreeSiteListMemory(list);
  };
}

std::function<void()> parsingOf(const std::string& path, void (*parse)(const std::string&)) {
  return [bytes = readFile(path), parse] { parse(bytes); };
}

// expat and the records, one after the other.
std::function<void()> parsingAndFillingOf(const std::string& path) {
  CSitesHelper helper(true);
  tag_Site* list = nullptr;
  check(helper.ReadSiteList(widePath(path), &list, true) == 0, "cannot read the list");
  const RecordRecipe records(list);
  CSitesHelper::FreeSiteListMemory(list);
  return [bytes = readFile(path), records] {
    parseWithExpat(bytes);
    records.buildAndFree();
  };
}

void addRowOfMany(std::size_t count, int samples) {
  addRow({"ReadSiteList, " + std::to_string(count) + " sites",
          "expat, empty handlers + records allocated, filled, freed", 1.3, samples, [count] {
            const std::string path = sitesFile(count);
            return Measurement{timed(readingOf(path)), timed(parsingAndFillingOf(path))};
          }});
}

}  // namespace

void addReadRows() {
  addRow(
      {"ReadSiteList, 12 sites", "expat, empty handlers", 2.0, 400, [] {
         const std::string path = sitesFile(12);
         return Measurement{timed(readingOf(path), 8), timed(parsingOf(path, parseWithExpat), 8)};
       }});
  addRow(
      {"ReadSiteList, 12 sites", "libxml2, tree", 0, 400, [] {
         const std::string path = sitesFile(12);
         return Measurement{timed(readingOf(path), 8), timed(parsingOf(path, parseWithLibxml2), 8)};
       }});
  addRow({"ReadSiteList, 12 sites", "expat + records allocated, filled, freed", 0, 400, [] {
            const std::string path = sitesFile(12);
            return Measurement{timed(readingOf(path), 8), timed(parsingAndFillingOf(path), 8)};
          }});
  addRowOfMany(1000, 60);
  addRowOfMany(10000, 11);
  addRow({"constructor with versions, 12 sites", "expat, empty handlers", 1.6, 400, [] {
            const std::string path = sitesFile(12);
            return Measurement{timed(
                                   [path = widePath(path)] {
                                     const CSitesHelper helper(path);
                                     keep(&helper);
                                   },
                                   8),
                               timed(parsingOf(path, parseWithExpat), 8)};
          }});
  addRow({"SmartReadSiteList from memory", "lock and unlock", 1.2, 400, [] {
            const std::wstring path = widePath(sitesFile(12));
            return Measurement{timed(
                                   [path] {
                                     static CSitesHelper helper(true);
                                     tag_Site* list = nullptr;
                                     check(helper.SmartReadSiteList(path, &list) == 0,
                                           "cannot read the list");
                                   },
                                   20),
                               timed([] { lockAndUnlock(sitehlp::smartSiteListLock); }, 20)};
          }});
}

}  // namespace bench
