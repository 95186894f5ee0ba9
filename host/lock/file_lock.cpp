#include "host/lock/file_lock.h"

#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include "host/fs/file_system.h"
#include "platform/lock/interprocess_lock.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

constexpr microseconds c_firstPause{50};
constexpr microseconds c_longestPause{5000};

}  // namespace

Patience::Patience(unsigned int milliseconds)
    : m_isNone(milliseconds == 0),
      m_forEver(milliseconds >= korvel_com::orb::lock::c_waitForEver),
      m_end(Clock::now() + std::chrono::milliseconds(m_forEver ? 0 : milliseconds)) {}

int Patience::lock(int fd, int operation) const {
  if (m_forEver) return -fileSystem().lock(fd, operation);
  for (microseconds pause = c_firstPause;; pause = std::min(2 * pause, c_longestPause)) {
    const int error = -fileSystem().lock(fd, operation | LOCK_NB);
    if (error != EWOULDBLOCK) return error;
    const Clock::duration left = m_end - Clock::now();
    if (left <= Clock::duration::zero()) return error;
    std::this_thread::sleep_for(std::min<Clock::duration>(pause, left));
  }
}

int lockFiles(const LockFiles& files, LockMode mode, const Patience& patience) {
  const int operation = mode == LockMode::Write ? LOCK_EX : LOCK_SH;
  // A writer that does not wait does not need the gate, and would only delay readers there.
  if (mode == LockMode::Write && patience.isNone()) {
    return -fileSystem().lock(files.main.fd, operation | LOCK_NB);
  }
  // A waiting writer holds the gate, so new readers wait behind it. Otherwise readers could starve
  // the writer.
  int error = patience.lock(files.gate.fd, operation);
  if (error) return error;
  error = patience.lock(files.main.fd, operation);
  const int gateError = -fileSystem().lock(files.gate.fd, LOCK_UN);
  if (error == 0 && gateError) {
    fileSystem().lock(files.main.fd, LOCK_UN);
    error = gateError;
  }
  return error;
}

int unlockFiles(const LockFiles& files) { return -fileSystem().lock(files.main.fd, LOCK_UN); }

}  // namespace host
