#ifndef SITEHLP_READ_SMART_READ_H
#define SITEHLP_READ_SMART_READ_H

#include <string>

#include "sitehlp/site.h"

namespace sitehlp {

class CSitesHelper;

// Does the same as CSitesHelper::SmartReadSiteList. The caller must hold a CacheGuard as long as it
// uses the list. After a negative result the caller owns the list.
int smartRead(CSitesHelper& helper, const std::wstring& path, tag_Site** list);

}  // namespace sitehlp

#endif
