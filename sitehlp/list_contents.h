#ifndef SITEHLP_LIST_CONTENTS_H
#define SITEHLP_LIST_CONTENTS_H

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "sitehlp/export.h"
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

// Reads a site list file once, under the read lock "SiteListLock", for all that it holds: `take`
// gets each site in the order of the document, as soon as it is decoded, so that a list need not be
// in memory as a whole. Returns what CSitesHelper::ReadSiteList returns; `contents` is filled when
// that is 0 or -1, before the first site is taken, and is empty otherwise. What `take` throws
// passes through. Any thread.
SITEHLP_API int readListContents(const std::wstring& path, ListContents& contents,
                                 const TakeSite& take);

}  // namespace sitehlp

#endif
