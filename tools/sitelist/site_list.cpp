#include "tools/sitelist/site_list.h"

#include "tools/sitelist/failure.h"
#include "tools/sitelist/text.h"

namespace tool {
namespace {

// Reaches the policy settings, which the library hands out by name only.
class PolicyAccess : public sitehlp::CSitesHelper {
 public:
  PolicyAccess() : CSitesHelper(true) {}
  const std::map<std::wstring, std::wstring>& policies() const { return m_policySettings; }
};

}  // namespace

SiteList readSiteList(const std::string& path) {
  SiteList list;
  list.path = path;
  const std::wstring file = wide(path);
  PolicyAccess helper;
  sitehlp::tag_Site* sites = nullptr;
  list.result = helper.ReadSiteList(file, &sites, true);
  list.sites.reset(sites);
  list.policies = helper.policies();
  if (helper.GetSitelistVersions(file, list.globalVersion, list.localVersion, list.type) != 0) {
    return list;
  }
  std::wstring fipsMode;
  if (helper.GetSitelistFipsMode(file, fipsMode) == 0) list.fipsMode = fipsMode;
  helper.GetCaCertificates(file, list.certificates);
  return list;
}

SiteList readWholeSiteList(const std::string& path) {
  SiteList list = readSiteList(path);
  if (list.result != 0) throw libraryFailure(path, list.result);
  return list;
}

void writeSiteList(SiteList& list, const std::string& path) {
  sitehlp::CSitesHelper helper(true);
  for (const auto& [name, value] : list.policies) helper.SetPolicySetting(name, value);
  const int result = helper.CreateSiteList(list.sites.get(), wide(path), list.globalVersion,
                                           list.localVersion, list.type, list.certificates);
  if (result != 0) throw libraryFailure(path, result);
}

SiteList asWritten(SiteList& list, const std::string& scratch) {
  writeSiteList(list, scratch);
  SiteList written = readSiteList(scratch);
  written.path = list.path;
  return written;
}

std::string countEntries(const sitehlp::tag_Site* sites) {
  std::size_t count = 0;
  for (; sites; sites = sites->pNext) ++count;
  return std::to_string(count) + (count == 1 ? " entry" : " entries");
}

}  // namespace tool
