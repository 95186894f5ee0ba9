#include "bench/reads.h"

#include "bench/check.h"
#include "sitehlp/sites_helper.h"

namespace bench {

using sitehlp::CSitesHelper;

void readList(const DocumentPath& path) {
  static CSitesHelper helper(true);
  sitehlp::tag_Site* list = nullptr;
  check(helper.ReadSiteList(path.wide, &list, true) == 0, "cannot read the list");
  CSitesHelper::FreeSiteListMemory(list);
}

}  // namespace bench
