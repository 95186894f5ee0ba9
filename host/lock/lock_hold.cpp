#include "host/lock/lock_hold.h"

#include "host/detached_agent.h"
#include "host/process/fork_lock.h"

namespace host {
namespace {

// The first object of a list of all holds of this thread.
thread_local LockHold* g_firstHold = nullptr;

// The child of a fork holds nothing, so nothing is unlocked.
const ForkChildHandler g_forkHandler{[] { g_firstHold = nullptr; }};

}  // namespace

LockHold::LockHold(const char* name, LockMode mode)
    : m_name(name), m_mode(mode), m_reader(name), m_writer(name) {}

LockHold::~LockHold() { unlock(); }

bool LockHold::lock(unsigned int waitMilliseconds) {
  unlock();
  m_dataDirectory = agent().dataDirectory;
  const bool isLocked =
      m_mode == LockMode::Read ? m_reader.lock(waitMilliseconds) : m_writer.lock(waitMilliseconds);
  // A lock of a detached agent excludes nobody, so it does not count as held.
  if (!isLocked || isDetached()) return isLocked;
  m_next = g_firstHold;
  g_firstHold = this;
  return true;
}

void LockHold::unlock() noexcept {
  for (LockHold** hold = &g_firstHold; *hold; hold = &(*hold)->m_next) {
    if (*hold != this) continue;
    *hold = m_next;
    break;
  }
  m_reader.unlock();
  m_writer.unlock();
}

bool LockHold::isHeld() const noexcept {
  for (const LockHold* hold = g_firstHold; hold; hold = hold->m_next) {
    if (hold == this) return true;
  }
  return false;
}

bool isHeldByThread(const std::string& name, LockMode mode) {
  for (const LockHold* hold = g_firstHold; hold; hold = hold->m_next) {
    if (hold->m_name == name && (hold->m_mode == LockMode::Write || mode == LockMode::Read) &&
        hold->m_dataDirectory == agent().dataDirectory) {
      return true;
    }
  }
  return false;
}

void releaseHolds() noexcept {
  for (LockHold* hold = g_firstHold; hold;) {
    LockHold* const next = hold->m_next;
    if (hold->m_dataDirectory == agent().dataDirectory) hold->unlock();
    hold = next;
  }
}

}  // namespace host
