#ifndef SITEHLP_COMMON_PROCESS_STATE_H
#define SITEHLP_COMMON_PROCESS_STATE_H

#include <ctime>

// What all instances in a process share, safe for threads and for the children of a fork.
namespace sitehlp {

// Guards CSitesHelper::m_pSiteList and m_iChange between the threads of this process, for the life
// of the object. It is held while an inter-process lock is waited for, so a fork does not wait for
// it: in the child it is free, unless the forking thread itself holds it.
class CacheGuard {
 public:
  CacheGuard();
  ~CacheGuard();
  CacheGuard(const CacheGuard&) = delete;
  CacheGuard& operator=(const CacheGuard&) = delete;
};

// The local time in the time zone in force now. Returns false when the system cannot convert it.
bool toLocalTime(std::time_t time, std::tm& local);

}  // namespace sitehlp

#endif
