#include "tools/sitelist/model/site_list.h"

#include <set>

#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/matching.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/root.h"

namespace tool {

SiteList readSiteList(const std::string& path) {
  SiteList list;
  list.path = path;
  sitehlp::tag_Site* last = nullptr;
  list.result =
      sitehlp::CSitesHelper::ReadListContents(wide(path), list, [&](sitehlp::tag_Site* site) {
        if (last) {
          last->pNext = site;
        } else {
          list.sites.reset(site);
        }
        last = site;
      });
  return list;
}

SiteList readWholeSiteList(const std::string& path) {
  SiteList list = readSiteList(path);
  if (list.result != 0) throw libraryFailure(path, list.result);
  requireSiteList(path);
  return list;
}

void writeSiteList(SiteList& list, const std::string& path) {
  sitehlp::CSitesHelper helper(true);
  for (const auto& [name, value] : list.policySettings) helper.SetPolicySetting(name, value);
  const int result = helper.CreateSiteList(list.sites.get(), wide(path), list.globalVersion,
                                           list.localVersion, list.type, list.certificates);
  if (result != 0) throw libraryFailure(path, result);
}

std::string missingSite(const std::string& name, const std::string& kind) {
  return "there is no site \"" + shown(name) + "\"" + (kind.empty() ? "" : " of kind " + kind);
}

std::string similarSites(const SiteList& list, const std::string& name) {
  std::set<std::string> known;
  for (const sitehlp::tag_Site* site = list.sites.get(); site; site = site->pNext) {
    known.insert(narrow(nameOf(*site)));
  }
  known.erase(name);  // of another kind
  known.erase("");
  return shown(suggestion(name, {known.begin(), known.end()}));
}

Failure missingPolicy(const SiteList& list, const std::string& name) {
  std::vector<std::string> known;
  for (const auto& [each, value] : list.policySettings) known.push_back(narrow(each));
  return failureAt(
      list.path, exitNotFound,
      "there is no policy setting \"" + shown(name) + "\"" + shown(suggestion(name, known)),
      "list all settings with `sitelist policies`");
}

std::string countEntries(const sitehlp::tag_Site* sites) {
  std::size_t count = 0;
  for (; sites; sites = sites->pNext) ++count;
  return std::to_string(count) + (count == 1 ? " entry" : " entries");
}

}  // namespace tool
