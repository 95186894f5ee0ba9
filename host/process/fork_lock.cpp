#include "host/process/fork_lock.h"

#include <pthread.h>

#include <cassert>
#include <cstdlib>
#include <utility>

#include "host/process/fork_generation.h"

namespace host {
namespace {

// Never destroyed, and initialised at compile time.
struct Mutex {
  pthread_mutex_t system = PTHREAD_MUTEX_INITIALIZER;
};
Mutex g_mutexes[c_forkMutexCount];

const ForkChildHandler* g_lastHandler = nullptr;

#ifndef NDEBUG
// One bit for each mutex that this thread holds
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
  for (std::size_t index = 0; index < c_forkMutexCount; ++index) lock(index);
}

void afterFork() {
  for (std::size_t index = c_forkMutexCount; index > 0; --index) unlock(index - 1);
}

void afterForkInChild() {
  forgetForkGeneration();
  ForkChildHandler::callAll();
  afterFork();
}

// Handlers before a fork run in the reverse order of their registration. These are registered when
// the library is loaded. They therefore run after all handlers that are registered later. By then,
// those handlers have taken every lock that a thread may hold when it takes one of these mutexes.
[[gnu::constructor(101)]] void watchForks() {
  if (::pthread_atfork(beforeFork, afterFork, afterForkInChild) != 0) std::abort();
}

}  // namespace

ForkLock::ForkLock(const ForkMutex& mutex) noexcept : m_place(mutex.place()) { lock(m_place); }

ForkLock::~ForkLock() { unlock(m_place); }

ForkChildHandler::ForkChildHandler(void (*function)()) noexcept
    : m_function(function), m_next(std::exchange(g_lastHandler, this)) {}

void ForkChildHandler::callAll() {
  for (const ForkChildHandler* handler = g_lastHandler; handler; handler = handler->m_next) {
    handler->m_function();
  }
}

}  // namespace host
