#include "host/process/fork_lock.h"

#include <pthread.h>

#include <cassert>
#include <cstddef>
#include <cstdlib>

#include "host/lock/lock_pool.h"
#include "host/process/fork_generation.h"

namespace host {
namespace {

constexpr std::size_t c_count = static_cast<std::size_t>(Guarded::ErrorText) + 1;

// Never destroyed, and there before any code runs.
struct Mutex {
  pthread_mutex_t system = PTHREAD_MUTEX_INITIALIZER;
};
Mutex g_mutexes[c_count];

#ifndef NDEBUG
// One bit for each mutex that this thread holds.
thread_local unsigned int t_held = 0;
#endif

void lock(std::size_t index) {
#ifndef NDEBUG
  assert(t_held >> index == 0 && "mutexes are taken in their order");
  t_held |= 1U << index;
#endif
  ::pthread_mutex_lock(&g_mutexes[index].system);
}

void unlock(std::size_t index) {
  ::pthread_mutex_unlock(&g_mutexes[index].system);
#ifndef NDEBUG
  t_held &= ~(1U << index);
#endif
}

void beforeFork() {
  for (std::size_t index = 0; index < c_count; ++index) lock(index);
}

void afterFork() {
  for (std::size_t index = c_count; index > 0; --index) unlock(index - 1);
}

void afterForkInChild() {
  forgetForkGeneration();
  LockPool::closeFilesOfParent();
  afterFork();
}

// Registered when the library is loaded, so before anything that may be locked while one of these
// is taken: handlers run before a fork in the reverse of the order of their registration.
[[gnu::constructor(101)]] void watchForks() {
  if (::pthread_atfork(beforeFork, afterFork, afterForkInChild) != 0) std::abort();
}

}  // namespace

ForkLock::ForkLock(Guarded what) noexcept : m_what(what) { lock(static_cast<std::size_t>(what)); }

ForkLock::~ForkLock() { unlock(static_cast<std::size_t>(m_what)); }

}  // namespace host
