#ifndef SITEHLP_LIST_CONTENTS_H
#define SITEHLP_LIST_CONTENTS_H

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "sitehlp/site.h"

namespace sitehlp {

// The content of a site list file without its sites. The queries of CSitesHelper return the same
// values one by one.
struct ListContents {
  std::wstring globalVersion;                           // as in GetSitelistVersions
  std::wstring localVersion;                            // as in GetSitelistVersions
  std::wstring type;                                    // as in GetSitelistVersions
  std::optional<std::wstring> fipsMode;                 // no value when the list has none
  std::vector<std::wstring> certificates;               // as in GetCaCertificates
  std::map<std::wstring, std::wstring> policySettings;  // by name
};

// A function that receives one record, whose pNext is null. It then owns the record and must
// release it with CSitesHelper::FreeSiteListMemory.
using TakeSite = std::function<void(tag_Site*)>;

}  // namespace sitehlp

#endif
