#include <memory>

#include "bench/check.h"
#include "bench/edits.h"
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

constexpr std::size_t c_small = 1000;
constexpr std::size_t c_large = 10000;
constexpr double c_bound = 11;

// Returns the cost of an operation on a list with that many elements.
using CostOfSize = std::function<Cost(std::size_t)>;

void addGrowthRow(const std::string& name, const CostOfSize& cost, int samples = 9,
                  double bound = c_bound) {
  addRow({name + ", 10000 elements", "the same with 1000", bound, samples, [cost] {
            return Measurement{withNewMemory(cost(c_large)), withNewMemory(cost(c_small))};
          }});
}

std::shared_ptr<tag_Site> shared(tag_Site* list) {
  return std::shared_ptr<tag_Site>(list, CSitesHelper::FreeSiteListMemory);
}

Cost reading(std::size_t count) {
  return timed([path = widePath(sitesFile(count))] {
    CSitesHelper helper(true);
    tag_Site* list = nullptr;
    check(helper.ReadSiteList(path, &list, true) == 0, "cannot read the list");
    CSitesHelper::FreeSiteListMemory(list);
  });
}

Cost readingVersions(std::size_t count) {
  return timed([path = widePath(sitesFile(count))] {
    const CSitesHelper helper(path);
    keep(&helper);
  });
}

Cost readingCertificates(std::size_t count) {
  return timed([path = widePath(sitesFile(count))] {
    CSitesHelper helper(true);
    std::vector<std::wstring> certificates;
    check(helper.GetCaCertificates(path, certificates) == 0, "cannot read the certificates");
  });
}

Cost readingText(std::size_t count) {
  const auto helper = std::make_shared<CSitesHelper>(widePath(sitesFile(count)));
  return timed([helper] {
    std::wstring text;
    check(helper->GetSiteListBuffer(text), "cannot read the text");
  });
}

Cost writing(std::size_t count) {
  const std::shared_ptr<tag_Site> list = shared(makeSites(count));
  return timed([list, path = widePath(inEtc("written.xml"))] {
    CSitesHelper helper(true);
    check(helper.CreateSiteList(list.get(), path, L"1", L"1", L"Client", {}) == 0,
          "cannot write the list");
  });
}

Cost merging(std::size_t count) {
  const std::shared_ptr<tag_Site> first = shared(makeSites(count, 1));
  const std::shared_ptr<tag_Site> second = shared(makeSites(count, 2));
  return timed([first, second] {
    CSitesHelper helper(true);
    tag_Site* merged = nullptr;
    check(helper.MergeSiteLists(first.get(), second.get(), true, &merged) == 0,
          "cannot merge the lists");
    CSitesHelper::FreeSiteListMemory(merged);
  });
}

// The other kind of merge: all servers of the list on disk are replaced with those of another list.
Cost mergingServers(std::size_t count) {
  const std::shared_ptr<tag_Site> first = shared(makeServers(count, 1));
  const auto helper = std::make_shared<CSitesHelper>(widePath(serversFile(count, 2)));
  return timed([helper, first] {
    tag_Site* merged = nullptr;
    check(helper->MergeSiteLists(first.get(), nullptr, false, &merged) == 0,
          "cannot merge the lists");
    CSitesHelper::FreeSiteListMemory(merged);
  });
}

Cost checking(std::size_t count) {
  const std::shared_ptr<tag_Site> list = shared(makeSites(count));
  return timed([list] {
    CSitesHelper helper(true);
    keep(helper.SourceSiteListCheck(list.get(), true));
  });
}

Cost ordering(std::size_t count) {
  const std::shared_ptr<tag_Site> list = shared(makeSites(count));
  return timed([list] {
    CSitesHelper helper(true);
    helper.AdjustSitesOrder(list.get());
  });
}

Cost askingServers(std::size_t count) {
  const auto helper = std::make_shared<CSitesHelper>(widePath(sitesFile(count)));
  // A process has only one cached list. This replaces it with the list of `count` sites.
  const auto keepList = [helper, count] {
    static std::size_t kept = 0;
    if (kept == count) return;
    for (int i = 0; i < 3; ++i) CSitesHelper(true).needToUpdateInMemSiteList();
    tag_Site* list = nullptr;
    check(helper->SmartReadSiteList(std::wstring(), &list) == 0 && list, "cannot read the list");
    letMemoryGo();  // the memory of the list that was cached before
    kept = count;
  };
  return timedAfter(keepList, [helper] {
    std::wstring names;
    std::wstring servers;
    std::wstring addresses;
    std::wstring netbiosNames;
    std::wstring versions;
    int port = 0;
    check(helper->GetPYXServerInfo(names, servers, addresses, netbiosNames, port, versions, true,
                                   false) == 0,
          "cannot ask for the servers");
  });
}

Cost importing(std::size_t count) {
  const std::string incoming = sitesFile(count);
  for (const char* key : {"srpubkey.bin", "reqseckey.bin"}) {
    writeFile(inEtc(key), std::string(256, 'k'));
  }
  const std::wstring own = widePath(agentDirectory() + "/own/SiteList.xml");
  const auto helper = std::make_shared<CSitesHelper>(own);
  return timed([helper, incoming = widePath(incoming)] {
    check(helper->ImportSiteList(incoming, L"") == 0, "cannot import the list");
  });
}

Cost editing(const Edit& edit) {
  const auto restore = [edit] {
    edit.restore();
    letMemoryGo();
  };
  return timedAfter(restore, edit.perform);
}

Cost modifying(std::size_t count) {
  return editing(modifyOf(sitesFile(count), sitesFile(count, 1)));
}

Cost modifyingServers(std::size_t count) {
  return editing(modifyOf(serversFile(c_large, 1), serversFile(count, 2)));
}

// The baseline of the edits, for comparison.
Cost rewriting(std::size_t count) {
  return timed([bytes = readFile(sitesFile(count)), path = inEtc("rewritten.xml")] {
    rewriteChecked(bytes, path);
  });
}

Cost deriving(std::size_t count) { return editing(deriveOf(sitesFile(count))); }

}  // namespace

void addGrowthRows() {
  addGrowthRow("ReadSiteList", reading);
  addGrowthRow("constructor with versions", readingVersions, 15);
  addGrowthRow("GetCaCertificates", readingCertificates, 15);
  addGrowthRow("GetSiteListBuffer", readingText, 31);
  addGrowthRow("CreateSiteList", writing);
  addGrowthRow("MergeSiteLists, second before first", merging);
  addGrowthRow("MergeSiteLists, all servers of the list on disk replaced", mergingServers);
  addGrowthRow("SourceSiteListCheck", checking, 31);
  addGrowthRow("AdjustSitesOrder", ordering, 31);
  addGrowthRow("GetPYXServerInfo", askingServers, 9);
  addGrowthRow("ImportSiteList", importing);
  addGrowthRow("modifySiteList", modifying);
  addGrowthRow("modifySiteList, 10000 servers replaced by others", modifyingServers);
  addGrowthRow("createServerSiteListFromSiteList", deriving);
  addGrowthRow("expat, empty handlers + pugixml: parse, print, atomic write", rewriting, 9, 0);
}

}  // namespace bench
