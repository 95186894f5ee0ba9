#include <map>

#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/doctor/checks.h"

namespace tool {

// If the vendor repository over FTP comes before the one over HTTP, an import swaps their orders.
// The check makes this change on a copy.
void checkVendorOrder(const ExaminedAgent& agent, Findings& findings) {
  if (!requireList(agent, findings)) return;
  const SiteList copy = readSiteList(agent.listPath);
  std::map<const sitehlp::tag_Site*, int> orders;
  for (const sitehlp::tag_Site* site = copy.sites.get(); site; site = site->pNext) {
    orders[site] = site->iOrder;
  }
  sitehlp::CSitesHelper(true).AdjustSitesOrder(copy.sites.get());
  std::string http;
  std::string ftp;
  for (const auto& [site, order] : orders) {
    if (site->iOrder == order) continue;
    (site->eSiteKind == sitehlp::SITE_KIND_FTP ? ftp : http) = shown(std::wstring(nameOf(*site)));
  }
  if (!http.empty() || !ftp.empty()) {
    findings.warn("the vendor repository over FTP (" + ftp + ") comes before the one over HTTP (" +
                      http + ")",
                  "swap their orders with `sitelist edit set`, or import the list again",
                  agent.listPath);
  }
  findings.okIfNone("no vendor repository over FTP comes before the one over HTTP");
}

}  // namespace tool
