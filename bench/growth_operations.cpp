#include "bench/growth_operations.h"

#include <memory>

#include "bench/check.h"
#include "bench/edits.h"
#include "bench/fresh_documents.h"
#include "bench/memory.h"
#include "bench/row.h"
#include "bench/sample_agent.h"
#include "bench/sample_lists.h"
#include "sitehlp/sites_helper.h"

namespace bench {

using sitehlp::CSitesHelper;
using sitehlp::tag_Site;

namespace {

std::shared_ptr<tag_Site> shared(tag_Site* list) {
  return std::shared_ptr<tag_Site>(list, CSitesHelper::FreeSiteListMemory);
}

Repeatable always(std::function<void()> run) {
  return {[] {}, std::move(run)};
}

// `list` is renewed before each run.
Repeatable onFresh(const std::string& list, std::function<void(const std::wstring&)> run) {
  const auto document = std::make_shared<FreshDocuments>(list, 1);
  return {[document] { document->renew(); },
          [path = document->paths()[0].wide, run = std::move(run)] { run(path); }};
}

Repeatable reading(std::size_t count) {
  return onFresh(sitesFile(count), [](const std::wstring& path) {
    CSitesHelper helper(true);
    tag_Site* list = nullptr;
    check(helper.ReadSiteList(path, &list, true) == 0, "cannot read the list");
    CSitesHelper::FreeSiteListMemory(list);
  });
}

Repeatable readingVersions(std::size_t count) {
  return onFresh(sitesFile(count), [](const std::wstring& path) {
    const CSitesHelper helper(path);
    keep(&helper);
  });
}

Repeatable readingCertificates(std::size_t count) {
  return onFresh(sitesFile(count), [](const std::wstring& path) {
    CSitesHelper helper(true);
    std::vector<std::wstring> certificates;
    check(helper.GetCaCertificates(path, certificates) == 0, "cannot read the certificates");
  });
}

Repeatable readingText(std::size_t count) {
  const auto helper = std::make_shared<CSitesHelper>(widePath(sitesFile(count)));
  return always([helper] {
    std::wstring text;
    check(helper->GetSiteListBuffer(text), "cannot read the text");
  });
}

Repeatable writing(std::size_t count) {
  const std::shared_ptr<tag_Site> list = shared(makeSites(count));
  return always([list, path = widePath(inEtc("written.xml"))] {
    CSitesHelper helper(true);
    check(helper.CreateSiteList(list.get(), path, L"1", L"1", L"Client", {}) == 0,
          "cannot write the list");
  });
}

Repeatable merging(std::size_t count) {
  const std::shared_ptr<tag_Site> first = shared(makeSites(count, 1));
  const std::shared_ptr<tag_Site> second = shared(makeSites(count, 2));
  return always([first, second] {
    CSitesHelper helper(true);
    tag_Site* merged = nullptr;
    check(helper.MergeSiteLists(first.get(), second.get(), true, &merged) == 0,
          "cannot merge the lists");
    CSitesHelper::FreeSiteListMemory(merged);
  });
}

// The other kind of merge: all servers of the list on disk are replaced with those of another list.
Repeatable mergingServers(std::size_t count) {
  const std::shared_ptr<tag_Site> first = shared(makeServers(count, 1));
  const auto document = std::make_shared<FreshDocuments>(serversFile(count, 2), 1);
  const auto helper = std::make_shared<CSitesHelper>(document->paths()[0].wide);
  const auto merge = [helper, first] {
    tag_Site* merged = nullptr;
    check(helper->MergeSiteLists(first.get(), nullptr, false, &merged) == 0,
          "cannot merge the lists");
    CSitesHelper::FreeSiteListMemory(merged);
  };
  return {[document] { document->renew(); }, merge};
}

Repeatable checking(std::size_t count) {
  const std::shared_ptr<tag_Site> list = shared(makeSites(count));
  return always([list] {
    CSitesHelper helper(true);
    keep(helper.SourceSiteListCheck(list.get(), true));
  });
}

Repeatable ordering(std::size_t count) {
  const std::shared_ptr<tag_Site> list = shared(makeSites(count));
  return always([list] {
    CSitesHelper helper(true);
    helper.AdjustSitesOrder(list.get());
  });
}

Repeatable askingServers(std::size_t count) {
  const auto helper = std::make_shared<CSitesHelper>(widePath(sitesFile(count)));
  // A process has only one cached list. This replaces it with the list of `count` sites.
  const auto keepList = [helper, count] {
    static std::size_t kept = 0;
    if (kept == count) return;
    for (int i = 0; i < 3; ++i) CSitesHelper(true).needToUpdateInMemSiteList();
    tag_Site* list = nullptr;
    check(helper->SmartReadSiteList(std::wstring(), &list) == 0 && list, "cannot read the list");
    kept = count;
  };
  return {keepList, [helper] {
            std::wstring names;
            std::wstring servers;
            std::wstring addresses;
            std::wstring netbiosNames;
            std::wstring versions;
            int port = 0;
            check(helper->GetPYXServerInfo(names, servers, addresses, netbiosNames, port, versions,
                                           true, false) == 0,
                  "cannot ask for the servers");
          }};
}

Repeatable importing(std::size_t count) {
  for (const char* key : {"srpubkey.bin", "reqseckey.bin"}) {
    writeFile(inEtc(key), std::string(256, 'k'));
  }
  const std::wstring own = widePath(agentDirectory() + "/own/SiteList.xml");
  const auto helper = std::make_shared<CSitesHelper>(own);
  return onFresh(sitesFile(count), [helper](const std::wstring& incoming) {
    check(helper->ImportSiteList(incoming, L"") == 0, "cannot import the list");
  });
}

Repeatable editing(const Edit& edit) { return {edit.restore, edit.perform}; }

Repeatable modifying(std::size_t count) {
  return editing(modifyOf(sitesFile(count), sitesFile(count, 1)));
}

// The list always has 10,000 servers. `count` is the number of servers in the source.
Repeatable modifyingServers(std::size_t count) {
  return editing(modifyOf(serversFile(10000, 1), serversFile(count, 2)));
}

Repeatable deriving(std::size_t count) { return editing(deriveOf(sitesFile(count))); }

}  // namespace

const std::vector<GrowthOperation>& growthOperations() {
  static const std::vector<GrowthOperation> operations = {
      {"ReadSiteList", 9, reading},
      {"constructor with versions", 15, readingVersions},
      {"GetCaCertificates", 15, readingCertificates},
      {"GetSiteListBuffer", 31, readingText},
      {"CreateSiteList", 9, writing},
      {"MergeSiteLists, second before first", 9, merging},
      {"MergeSiteLists, all servers of the list on disk replaced", 9, mergingServers},
      {"SourceSiteListCheck", 31, checking},
      {"AdjustSitesOrder", 31, ordering},
      {"GetPYXServerInfo", 9, askingServers},
      {"ImportSiteList", 9, importing},
      {"modifySiteList", 9, modifying},
      {"modifySiteList, 10000 servers replaced by others", 9, modifyingServers},
      {"createServerSiteListFromSiteList", 9, deriving},
  };
  return operations;
}

}  // namespace bench
