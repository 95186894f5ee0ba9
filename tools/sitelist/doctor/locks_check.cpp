#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <iostream>
#include <iterator>
#include <thread>

#include "host/fs/descriptor.h"
#include "sitehlp/sites_helper.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/doctor/checks.h"
#include "tools/sitelist/doctor/lock_holders.h"

namespace tool {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds c_pauseBetweenTries{50};
constexpr milliseconds c_waitWithoutMessage{1000};

// A lock file that was held at the first try.
class HeldLock {
 public:
  HeldLock(std::string name, int fd) : m_name(std::move(name)), m_file(fd) {
    ::fstat(fd, &m_status);
    m_holders = holdersOf(m_status);
    m_areKnown = !m_holders.empty();
  }

  // Returns whether the lock is still held by a process that has held it all the time. Several
  // readers may hold it in turn.
  bool isStillHeld() {
    if (isFree(m_file.get())) return false;
    if (!m_areKnown) return true;
    const std::set<pid_t> present = holdersOf(m_status);
    std::set<pid_t> lasting;
    std::set_intersection(m_holders.begin(), m_holders.end(), present.begin(), present.end(),
                          std::inserter(lasting, lasting.end()));
    m_holders = lasting;
    return !m_holders.empty();
  }

  static bool isFree(int fd) {
    if (host::fileSystem().lock(fd, LOCK_EX | LOCK_NB) == -EWOULDBLOCK) return false;
    host::fileSystem().lock(fd, LOCK_UN);
    return true;
  }

  const std::string& name() const { return m_name; }
  std::string text() const {
    const std::size_t dot = m_name.rfind('.');
    const bool isGate = m_name.substr(dot) == ".gate";
    return (isGate ? "the gate of the lock " : "the lock ") + m_name.substr(0, dot);
  }
  std::string holder() const {
    if (!m_areKnown) return "a process that cannot be found on this system";
    std::string text;
    for (const pid_t process : m_holders) {
      text.append(text.empty() ? "" : " and ").append(describeProcess(process));
    }
    return text;
  }

 private:
  std::string m_name;
  host::Descriptor m_file;
  struct stat m_status {};
  std::set<pid_t> m_holders;
  bool m_areKnown = false;
};

std::string seconds(unsigned int wait) { return std::to_string(wait / 1000) + " s"; }

// Waits until all locks are free or the time has run out. Leaves the locks in `locks` that are
// still held.
void await(std::vector<HeldLock>& locks, unsigned int wait) {
  const Clock::time_point start = Clock::now();
  bool isSaid = milliseconds(wait) <= c_waitWithoutMessage;
  while (!locks.empty() && Clock::now() - start < milliseconds(wait)) {
    if (!isSaid && Clock::now() - start >= c_waitWithoutMessage) {
      std::cerr << "sitelist: waiting at most " << seconds(wait) << " for " << locks.front().text()
                << ", held by " << locks.front().holder() << '\n';
      isSaid = true;
    }
    std::this_thread::sleep_for(c_pauseBetweenTries);
    locks.erase(std::remove_if(locks.begin(), locks.end(),
                               [](HeldLock& lock) { return !lock.isStillHeld(); }),
                locks.end());
  }
}

// Missing lock files are created when they are needed.
void checkDirectoryOfLocks(const ExaminedAgent& agent, Findings& findings) {
  const std::string locks = agent.path("locks");
  struct stat status;
  const bool isThere = host::fileSystem().stat(AT_FDCWD, locks, true, status) == 0;
  const std::string directory = isThere ? locks : agent.settings.dataDirectory;
  const int error = errorOfUse(agent.user, directory, W_OK | X_OK);
  if (error == 0) return;
  findings.fail("the agent's user cannot create the lock files: " + readFailureReason(error),
                "give " + userName(agent.user.id) + " permission to write in " +
                    (isThere ? "locks" : "the data directory"),
                directory);
}

// Returns false if the file does not exist.
bool checkLockFile(const ExaminedAgent& agent, const std::string& name, std::vector<HeldLock>& held,
                   Findings& findings) {
  const std::string path = agent.path("locks/" + name);
  const int fd =
      host::fileSystem().open(AT_FDCWD, path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0);
  if (fd == -ENOENT || fd == -ENOTDIR) return false;
  if (fd == -ELOOP) return true;  // the check of the files reports the link
  if (fd < 0) {
    addUnchecked(agent, path, -fd, findings);
    return true;
  }
  const int error = errorOfUse(agent.user, path, R_OK);
  if (error != 0) {
    findings.fail(
        "the agent's user cannot use " + agent.nameOf(path) + ": " + readFailureReason(error),
        std::string(c_runFix) + " as root", path);
  }
  if (HeldLock::isFree(fd)) {
    host::fileSystem().close(fd);
  } else {
    held.emplace_back(name, fd);
  }
  return true;
}

}  // namespace

void checkLocks(const ExaminedAgent& agent, Findings& findings) {
  if (!canActAs(agent.user)) return addUnchecked(agent, agent.path("locks"), EACCES, findings);
  std::vector<HeldLock> held;
  bool areThere = true;
  for (const char* name : {sitehlp::c_siteListLock, sitehlp::smartSiteListLock}) {
    for (const char* part : {".lock", ".gate"}) {
      areThere = checkLockFile(agent, std::string(name) + part, held, findings) && areThere;
    }
  }
  if (!areThere) checkDirectoryOfLocks(agent, findings);
  await(held, agent.lockWait);
  for (const HeldLock& lock : held) {
    const std::string since =
        agent.lockWait == 0 ? "is held by "
                            : "has been held for at least " + seconds(agent.lockWait) + " by ";
    findings.fail(lock.text() + " " + since + lock.holder(),
                  "check whether a process that holds the lock hangs, and end it if so",
                  agent.path("locks/" + lock.name()));
  }
  findings.okIfNone("both locks can be used and are free");
}

}  // namespace tool
