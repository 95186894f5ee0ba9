#ifndef SITEHLP_READ_SMART_READ_H
#define SITEHLP_READ_SMART_READ_H

#include <string>

#include "sitehlp/site.h"

namespace sitehlp {

class CSitesHelper;

// What CSitesHelper::SmartReadSiteList does, for a caller that holds a CacheGuard as long as it
// uses the list. A list that comes with a negative result is the caller's.
int smartRead(CSitesHelper& helper, const std::wstring& path, tag_Site** list);

}  // namespace sitehlp

#endif
