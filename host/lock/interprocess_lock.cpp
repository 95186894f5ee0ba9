#include "platform/lock/interprocess_lock.h"

#include <atomic>
#include <cerrno>
#include <string>
#include <utility>

#include "host/detached_agent.h"
#include "host/lock/file_lock.h"
#include "host/lock/lock_hold.h"
#include "host/lock/lock_pool.h"
#include "host/process/failure_text.h"
#include "platform/common/log.h"

namespace korvel_com {
namespace orb {
namespace lock {

using host::LockFailure;
using host::LockFiles;
using host::LockMode;
using host::LockPool;
using host::Patience;

// One lock object: its name and, while it is locked, its files. It has no files if its thread
// already holds the lock, or if the agent is detached.
struct LockImpl {
  explicit LockImpl(const char* lockName) : name(lockName ? lockName : "") {}
  ~LockImpl() { unlock(); }

  bool lock(LockMode mode, unsigned int waitMilliseconds);
  void unlock() noexcept;

 private:
  int tryFiles(LockMode mode, const Patience& patience);

  std::string name;
  LockFiles* files = nullptr;
  LockFailure failure;
};

namespace {

// After this many attempts with replaced lock files, locking fails.
constexpr int c_attempts = 100;

// Makes the writes of one thread under a lock visible to the next holder in the same process. The
// kernel ensures this, but the compiler knows it only from an atomic.
std::atomic<unsigned int> g_handOver{0};

void logFailure(const LockFailure& failure, int error) {
  const std::string reason = failure.reason.empty() ? host::errorText(error) : failure.reason;
  const std::string text = "Cannot lock " + failure.path + ": " + reason +
                           ". An operation that continues is not protected from other processes" +
                           (failure.advice.empty() ? "" : "; next: " + failure.advice);
  logError(host::c_logComponent, AString(text.c_str()));
}

}  // namespace

bool LockImpl::lock(LockMode mode, unsigned int waitMilliseconds) {
  if (files && files->main.fd < 0) unlock();  // the parent held it before the fork
  if (files) return true;
  if (host::isDetached() || host::isHeldByThread(name, mode)) return true;
  int error = EINVAL;
  if (name.empty() || name.find('/') != std::string::npos) {
    failure.path = name;
  } else {
    const Patience patience(waitMilliseconds);
    error = ESTALE;
    for (int attempt = 0; error == ESTALE && attempt < c_attempts; ++attempt) {
      error = tryFiles(mode, patience);
    }
  }
  if (error && error != EWOULDBLOCK) logFailure(failure, error);
  return error == 0;
}

int LockImpl::tryFiles(LockMode mode, const Patience& patience) {
  LockFiles* taken = nullptr;
  int error = LockPool::instance().take(name, taken, failure);
  if (error) return error;
  error = host::lockFiles(*taken, mode, patience);
  // Another process may have removed or replaced the files after they were opened. A lock on a file
  // that no longer has its name excludes nobody.
  if (error == 0) error = taken->check();
  if (error == 0) {
    files = taken;
    g_handOver.load(std::memory_order_acquire);
  } else if (error == EWOULDBLOCK) {
    LockPool::instance().giveBack(taken);
  } else {
    failure.path = std::move(taken->main.path);
    failure.reason.clear();
    failure.advice.clear();
    LockPool::instance().discard(taken);
  }
  return error;
}

void LockImpl::unlock() noexcept {
  if (!files) return;
  g_handOver.fetch_add(1, std::memory_order_acq_rel);
  if (files->main.fd >= 0 && host::unlockFiles(*files) == 0) {
    LockPool::instance().giveBack(files);
  } else {
    LockPool::instance().discard(files);
  }
  files = nullptr;
}

InterProcessReadLock::InterProcessReadLock(const char* name)
    : m_impl(std::make_unique<LockImpl>(name)) {}
InterProcessReadLock::~InterProcessReadLock() = default;

bool InterProcessReadLock::lock(unsigned int waitMilliseconds) {
  return m_impl->lock(LockMode::Read, waitMilliseconds);
}

void InterProcessReadLock::unlock() noexcept { m_impl->unlock(); }

InterProcessWriteLock::InterProcessWriteLock(const char* name)
    : m_impl(std::make_unique<LockImpl>(name)) {}
InterProcessWriteLock::~InterProcessWriteLock() = default;

bool InterProcessWriteLock::lock(unsigned int waitMilliseconds) {
  return m_impl->lock(LockMode::Write, waitMilliseconds);
}

void InterProcessWriteLock::unlock() noexcept { m_impl->unlock(); }

}  // namespace lock
}  // namespace orb
}  // namespace korvel_com
