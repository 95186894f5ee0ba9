#include "sitehlp/common/process_state.h"

#include <pthread.h>

#include <new>

namespace sitehlp {
namespace {

pthread_mutex_t g_cache = PTHREAD_MUTEX_INITIALIZER;
thread_local bool t_holdsCache = false;

// Held during a fork, because the C library takes a lock for the time zone. Without g_zone, another
// thread could hold that lock at the fork, and the child could never take it.
pthread_mutex_t g_zone = PTHREAD_MUTEX_INITIALIZER;

void beforeFork() { ::pthread_mutex_lock(&g_zone); }

void afterForkInParent() { ::pthread_mutex_unlock(&g_zone); }

void afterForkInChild() {
  ::pthread_mutex_unlock(&g_zone);
  // The thread that holds it does not exist in the child.
  if (!t_holdsCache) new (&g_cache) pthread_mutex_t(PTHREAD_MUTEX_INITIALIZER);
}

// Registered when the library is loaded, so before any fork.
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
  ::tzset();  // localtime_r alone may miss a change of the time zone
  const bool converted = ::localtime_r(&time, &local) != nullptr;
  ::pthread_mutex_unlock(&g_zone);
  return converted;
}

}  // namespace sitehlp
