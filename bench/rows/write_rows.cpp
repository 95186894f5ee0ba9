#include "bench/check.h"
#include "bench/floors.h"
#include "bench/fresh_documents.h"
#include "bench/reads.h"
#include "bench/row.h"
#include "bench/rows/row_groups.h"
#include "bench/sample_agent.h"
#include "bench/sample_lists.h"
#include "platform/common/afile.h"
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

// Performs the steps of ImportSiteList one by one.
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

// An import of a list that this process has not read before.
struct Import {
  SharedDocuments incoming;
  std::string directory;  // of the own list
  std::shared_ptr<CSitesHelper> helper;

  Cost cost() const {
    return firstUse(incoming, [helper = helper](const DocumentPath& path) {
      check(helper->ImportSiteList(path.wide, L"") == 0, "cannot import the list");
    });
  }
};

constexpr const char* c_keyFiles[] = {"srpubkey.bin", "sr2048pubkey.bin", "reqseckey.bin",
                                      "req2048seckey.bin"};

Import makeImport() {
  for (const char* const key : c_keyFiles) writeFile(inEtc(key), std::string(256, 'k'));
  const std::string directory = agentDirectory() + "/own";
  return {std::make_shared<FreshDocuments>(sitesFile(12), 1), directory,
          std::make_shared<CSitesHelper>(widePath(directory + "/SiteList.xml"))};
}

Measurement prepareImportInSteps() {
  const Import import = makeImport();
  const auto steps = [import](const DocumentPath& path) {
    importInSteps(*import.helper, widePath(import.directory + "/SiteList.xml"), path.wide,
                  [](int, const std::function<void()>& action) { action(); });
  };
  return {import.cost(), firstUse(import.incoming, steps)};
}

// Writes what an import writes: the key files, the list and the mesh copy. Key files that are the
// same already are only synced, as by an import.
void writeAll(const std::string& directory, const std::string& list) {
  const std::vector<unsigned char> bytes(256, 'k');
  const ABuffer key(bytes.data(), bytes.size());
  std::vector<AFile::NewContent> keys;
  for (const char* const name : c_keyFiles) {
    keys.push_back({widePath(directory + "/" + name), &key});
  }
  check(AFile::writeTogether(keys), "cannot write the key files");
  writeAtomically(directory + "/SiteList.xml", list);
  writeAtomically(agentDirectory() + "/mesh/SiteList.xml", list);
}

Measurement prepareImportByLeastWork() {
  const Import import = makeImport();
  const Cost cost = import.cost();
  cost();  // makes the own list
  const auto leastWork =
      [directory = import.directory,
       list = readFile(import.directory + "/SiteList.xml")](const DocumentPath& path) {
        readList(path);
        writeAll(directory, list);
      };
  return {cost, firstUse(import.incoming, leastWork)};
}

}  // namespace

void addWriteRows() {
  addRow({"CreateSiteList, 1000 sites", "pugixml building, printing + both atomic writes", 1.5, 60,
          [] { return prepareCreate(1000); }});
  addRow({"ImportSiteList, 12 sites", "its own steps", 1.1, 300, prepareImportInSteps});
  addRow({"ImportSiteList, 12 sites", "one first read + the writes it must make", 1.25, 300,
          prepareImportByLeastWork});
}

}  // namespace bench
