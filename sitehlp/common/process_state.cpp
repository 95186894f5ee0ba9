#include "sitehlp/common/process_state.h"

#include <pthread.h>

#include <new>

namespace sitehlp {
namespace {

pthread_mutex_t g_cache = PTHREAD_MUTEX_INITIALIZER;
thread_local bool t_holdsCache = false;

// The C library takes a lock of its own for the time zone, which a child of a fork would find held.
pthread_mutex_t g_zone = PTHREAD_MUTEX_INITIALIZER;

void beforeFork() { ::pthread_mutex_lock(&g_zone); }

void afterForkInParent() { ::pthread_mutex_unlock(&g_zone); }

void afterForkInChild() {
  ::pthread_mutex_unlock(&g_zone);
  // Its holder is a thread that the child does not have.
  if (!t_holdsCache) new (&g_cache) pthread_mutex_t(PTHREAD_MUTEX_INITIALIZER);
}

// When the library is loaded, so that no fork comes before it.
const int g_registered = ::pthread_atfork(beforeFork, afterForkInParent, afterForkInChild);

}  // namespace

CacheGuard::CacheGuard() {
  ::pthread_mutex_lock(&g_cache);
  t_holdsCache = true;
}

CacheGuard::~CacheGuard() {
  t_holdsCache = false;
  ::pthread_mutex_unlock(&g_cache);
}

bool toLocalTime(std::time_t time, std::tm& local) {
  ::pthread_mutex_lock(&g_zone);
  ::tzset();  // localtime_r alone need not notice that the zone has changed
  const bool converted = ::localtime_r(&time, &local) != nullptr;
  ::pthread_mutex_unlock(&g_zone);
  return converted;
}

}  // namespace sitehlp
