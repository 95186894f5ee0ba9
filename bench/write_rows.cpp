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

void create(CSitesHelper& helper, tag_Site* list, const std::wstring& path,
            const std::vector<std::wstring>& certificates) {
  check(helper.CreateSiteList(list, path, L"20261120000000", L"20261120000000", L"Client",
                              certificates) == 0,
        "cannot write the list");
}

Measurement prepareCreate(std::size_t count) {
  tag_Site* const list = makeSites(count);
  const std::string path = inEtc("created.xml");
  // Writing reduces the proxy's exclusions to the first one. After this first write, all writes are
  // the same.
  CSitesHelper helper(true);
  create(helper, list, widePath(path), {});
  const TreeRecipe tree(readFile(path));
  const std::string meshPath = agentDirectory() + "/mesh/SiteList.xml";
  return {timed([list, path = widePath(path)] {
            static CSitesHelper writer(true);
            create(writer, list, path, {});
          }),
          timed([tree, path, meshPath] {
            const std::string text = tree.buildAndPrint();
            writeAtomically(path, text);
            writeAtomically(meshPath, text);
          })};
}

// Does the same steps as ImportSiteList.
void importInSteps(CSitesHelper& helper, const std::wstring& own, const std::wstring& incoming,
                   const std::function<void(int, const std::function<void()>&)>& step) {
  tag_Site* list = nullptr;
  std::wstring global;
  std::wstring local;
  std::wstring type;
  std::vector<std::wstring> certificates;
  step(0, [&] { helper.MustReadSiteList(incoming, &list); });
  step(1, [&] { helper.SourceSiteListCheck(list, false); });
  step(2, [&] { helper.AdjustSitesOrder(list); });
  step(3, [&] { helper.GetSitelistVersions(incoming, global, local, type); });
  step(4, [&] { helper.GetCaCertificates(incoming, certificates); });
  step(5, [&] { helper.createDirectoriesAndCopyKeyFiles(incoming, list, std::wstring()); });
  step(6, [&] { helper.CreateSiteList(list, own, global, local, type, certificates); });
  step(7, [&] { CSitesHelper::FreeSiteListMemory(list); });
}

Measurement prepareImport() {
  const std::string incoming = sitesFile(12);
  for (const char* key :
       {"srpubkey.bin", "reqseckey.bin", "sr2048pubkey.bin", "req2048seckey.bin"}) {
    writeFile(inEtc(key), std::string(256, 'k'));
  }
  const std::string directory = agentDirectory() + "/own";
  const std::wstring own = widePath(directory + "/SiteList.xml");
  static CSitesHelper helper(own);
  check(helper.ImportSiteList(widePath(incoming), L"") == 0, "cannot import the list");
  const auto steps = [own, incoming = widePath(incoming)] {
    importInSteps(helper, own, incoming,
                  [](int, const std::function<void()>& action) { action(); });
  };
  return {timed([incoming = widePath(incoming)] {
            check(helper.ImportSiteList(incoming, L"") == 0, "cannot import the list");
          }),
          timed(steps)};
}

}  // namespace

void addWriteRows() {
  addRow({"CreateSiteList, 1000 sites", "pugixml building, printing + both atomic writes", 1.5, 60,
          [] { return prepareCreate(1000); }});
  addRow({"ImportSiteList, 12 sites", "its own steps", 1.1, 300, prepareImport});
}

}  // namespace bench
