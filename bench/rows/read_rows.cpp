#include "bench/check.h"
#include "bench/floors.h"
#include "bench/fresh_documents.h"
#include "bench/memory.h"
#include "bench/reads.h"
#include "bench/row.h"
#include "bench/rows/row_groups.h"
#include "bench/sample_agent.h"
#include "bench/sample_lists.h"
#include "sitehlp/sites_helper.h"

namespace bench {

using sitehlp::CSitesHelper;
using sitehlp::tag_Site;

namespace {

// The time of one small document is short, so each sample is the average of several.
constexpr std::size_t c_smallDocuments = 8;

UseDocument parsingOf(const std::string& list, void (*parse)(const std::string&)) {
  return [bytes = readFile(list), parse](const DocumentPath&) { parse(bytes); };
}

// Parses with expat, then allocates, fills and frees the records.
UseDocument parsingAndFillingOf(const std::string& list) {
  CSitesHelper helper(true);
  tag_Site* sites = nullptr;
  check(helper.ReadSiteList(widePath(list), &sites, true) == 0, "cannot read the list");
  const RecordRecipe records(sites);
  CSitesHelper::FreeSiteListMemory(sites);
  return [bytes = readFile(list), records](const DocumentPath&) {
    parseWithExpat(bytes);
    records.buildAndFree();
  };
}

void readVersions(const DocumentPath& path) {
  const CSitesHelper helper(path.wide);
  keep(&helper);
}

// Both costs begin with the same renewal of the documents, so that both find the same caches.
Measurement firstUses(const std::string& list, std::size_t documents, const UseDocument& subject,
                      const UseDocument& floor) {
  const auto fresh = std::make_shared<FreshDocuments>(list, documents);
  return {firstUse(fresh, subject), firstUse(fresh, floor)};
}

void addRowsOfMany(std::size_t count, int samples) {
  const auto prepare = [count] {
    const std::string list = sitesFile(count);
    return firstUses(list, 1, readList, parsingAndFillingOf(list));
  };
  const std::string name = "ReadSiteList, " + std::to_string(count) + " sites with passwords";
  const char* const floor = "expat, empty handlers + records allocated, filled, freed";
  addRow(
      {name + ", fresh memory", floor, 1.3, samples, [prepare] {
         const Measurement measurement = prepare();
         return Measurement{withNewMemory(measurement.subject), withNewMemory(measurement.floor)};
       }});
  addRow({name + ", retained memory", floor, 0, samples, [prepare] {
            keepFreedMemory();
            return prepare();
          }});
}

// Uses small lists repeatedly. The allocator keeps the freed memory.
void addRowOf12(const char* name, const char* against, double bound, const UseDocument& use,
                UseDocument (*floorOf)(const std::string&)) {
  addRow({name, against, bound, 400, [use, floorOf] {
            keepFreedMemory();
            const std::string list = sitesFile(12);
            return firstUses(list, c_smallDocuments, use, floorOf(list));
          }});
}

UseDocument parsingWithExpat(const std::string& list) { return parsingOf(list, parseWithExpat); }

void addSmartReadRow() {
  addRow({"SmartReadSiteList from memory", "lock and unlock", 1.2, 400, [] {
            const std::wstring path = widePath(sitesFile(12));
            const auto read = [path] {
              static CSitesHelper helper(true);
              tag_Site* list = nullptr;
              check(helper.SmartReadSiteList(path, &list) == 0, "cannot read the list");
            };
            const auto lock = [] { lockAndUnlock(sitehlp::smartSiteListLock); };
            return Measurement{timed(read, 20), timed(lock, 20)};
          }});
}

}  // namespace

void addReadRows() {
  constexpr const char* c_name = "ReadSiteList, 12 sites with passwords";
  addRowOf12(c_name, "expat, empty handlers", 2.0, readList, parsingWithExpat);
  addRowOf12(c_name, "libxml2, tree", 0, readList,
             [](const std::string& list) { return parsingOf(list, parseWithLibxml2); });
  addRowOf12(c_name, "expat + records allocated, filled, freed", 0, readList, parsingAndFillingOf);
  addRowsOfMany(1000, 60);
  addRowsOfMany(10000, 11);
  addRowOf12("constructor with versions, 12 sites", "expat, empty handlers", 1.6, readVersions,
             parsingWithExpat);
  addSmartReadRow();
}

}  // namespace bench
