#ifndef TESTS_IMPORT_SITE_CACHE_H
#define TESTS_IMPORT_SITE_CACHE_H

#include "sitehlp/sites_helper.h"

namespace test {

// Resets the cached list of this process to the state at the start of a process.
inline void clearSiteCache() {
  sitehlp::CSitesHelper::FreeSiteListMemory(sitehlp::CSitesHelper::m_pSiteList);
  sitehlp::CSitesHelper::m_pSiteList = nullptr;
  sitehlp::CSitesHelper::m_iChange = 0;
}

}  // namespace test

#endif
