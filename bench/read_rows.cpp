#include "bench/check.h"
#include "bench/floors.h"
#include "bench/memory.h"
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

// Parses with expat, then allocates, fills and frees the records.
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

void addRowsOfMany(std::size_t count, int samples) {
  const auto prepare = [count] {
    const std::string path = sitesFile(count);
    return Measurement{timed(readingOf(path)), timed(parsingAndFillingOf(path))};
  };
  const std::string name = "ReadSiteList, " + std::to_string(count) + " sites";
  const char* const floor = "expat, empty handlers + records allocated, filled, freed";
  addRow(
      {name + ", fresh memory", floor, 1.3, samples, [prepare] {
         const Measurement measurement = prepare();
         return Measurement{withNewMemory(measurement.subject), withNewMemory(measurement.floor)};
       }});
  addRow({name + ", retained memory", floor, 1.3, samples, [prepare] {
            keepFreedMemory();
            return prepare();
          }});
}

// Reads one small list repeatedly. The allocator keeps the freed memory.
void addRowOf12(const char* against, double bound,
                std::function<void()> (*floorOf)(const std::string&)) {
  addRow({"ReadSiteList, 12 sites", against, bound, 400, [floorOf] {
            keepFreedMemory();
            const std::string path = sitesFile(12);
            return Measurement{timed(readingOf(path), 8), timed(floorOf(path), 8)};
          }});
}

}  // namespace

void addReadRows() {
  addRowOf12("expat, empty handlers", 2.0,
             [](const std::string& path) { return parsingOf(path, parseWithExpat); });
  addRowOf12("libxml2, tree", 0,
             [](const std::string& path) { return parsingOf(path, parseWithLibxml2); });
  addRowOf12("expat + records allocated, filled, freed", 0, parsingAndFillingOf);
  addRowsOfMany(1000, 60);
  addRowsOfMany(10000, 11);
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
