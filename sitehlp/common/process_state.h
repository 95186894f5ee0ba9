#ifndef SITEHLP_COMMON_PROCESS_STATE_H
#define SITEHLP_COMMON_PROCESS_STATE_H

#include <ctime>

// State that all instances in a process share. It is safe for threads and for children of fork.
namespace sitehlp {

// Guards CSitesHelper::m_pSiteList and m_iChange between the threads of this process, for the life
// of the object. A thread may hold it while it waits for an inter-process lock, so a fork does not
// wait for it. In the child it is free, unless the forking thread itself holds it.
class CacheGuard {
 public:
  CacheGuard();
  ~CacheGuard();
  CacheGuard(const CacheGuard&) = delete;
  CacheGuard& operator=(const CacheGuard&) = delete;
};

// Gets the local time in the current time zone. Returns false when the system cannot convert it.
bool toLocalTime(std::time_t time, std::tm& local);

}  // namespace sitehlp

#endif
