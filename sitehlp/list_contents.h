#ifndef SITEHLP_LIST_CONTENTS_H
#define SITEHLP_LIST_CONTENTS_H

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "sitehlp/site.h"

namespace sitehlp {

// What a site list file holds beside its sites, as the queries of CSitesHelper tell it one by one.
struct ListContents {
  std::wstring globalVersion;                           // as GetSitelistVersions tells it
  std::wstring localVersion;                            // the same
  std::wstring type;                                    // the same
  std::optional<std::wstring> fipsMode;                 // none when the list does not say it
  std::vector<std::wstring> certificates;               // as GetCaCertificates tells them
  std::map<std::wstring, std::wstring> policySettings;  // by name
};

// Becomes the owner of one record, whose pNext is null, and gives it to
// CSitesHelper::FreeSiteListMemory in the end.
using TakeSite = std::function<void(tag_Site*)>;

}  // namespace sitehlp

#endif
