#ifndef TOOLS_SITELIST_AGENT_LIST_LOCK_H
#define TOOLS_SITELIST_AGENT_LIST_LOCK_H

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "host/lock/directory_lock.h"
#include "host/lock/lock_hold.h"
#include "tools/sitelist/agent/change_watch.h"
#include "tools/sitelist/history/history.h"
#include "tools/sitelist/report/context.h"

namespace tool {

// How a command uses a list: it reads it, reads it through the cached list, changes it, or mends
// files beside it. Mending takes the lock of a change, but puts no list into the history.
enum class ListUse { Read, ReadCached, Change, Mend };

// Holds the lock of a list from the first read of a command to its last write. The operations of
// the library take the same lock without waiting.
//
// The lock of the agent's own list is the agent's "SiteListLock". The load command runs without it.
// Any other list is locked through its directory. It is also locked with the agent's lock if the
// user may use the lock files. Its directory is locked only for a change. A read needs no such
// lock, because lists are replaced atomically.
//
// A change of the agent's own list puts the old list into the history. While a lock for a change
// is held, a ChangeWatch finds out whether files change.
class ListLock {
 public:
  // Makes the agent of the lock the current agent. An empty file name means the agent's own list.
  // Waits at most for the time of --wait. On a terminal, prints a message while it waits. Fails
  // when the lock cannot be taken. A read does not fail if the lock files cannot be used, because
  // the library logs that and reads the list.
  ListLock(Context& context, const std::string& file, ListUse use);
  // Takes the agent's lock again if it was released, to complete the history.
  ~ListLock();

  // Fails when a named file was changed after the lock was taken. A program that does not take the
  // lock can change the file. Any program can change it if the directory cannot be locked. Must be
  // called before the file is written.
  void requireUnchanged() const;

 private:
  enum class Answer { Held, Busy, Unusable };
  using Clock = std::chrono::steady_clock;

  Answer await(const std::function<Answer(unsigned int milliseconds)>& lock);
  void takeFromAgent(const char* name, ListUse use, std::optional<host::LockHold>& hold);
  void lockDirectory();
  [[noreturn]] void failBusy() const;

  std::string m_path;
  Clock::time_point m_start;
  std::chrono::milliseconds m_wait;
  std::optional<host::LockHold> m_cacheHold;
  std::optional<host::LockHold> m_listHold;
  std::optional<KeptList> m_kept;  // under the lock
  host::DirectoryLock m_directory;
  std::optional<std::string> m_state;  // of the file before a change, if it is not the own list
  std::optional<ChangeWatch> m_watch;  // under the locks
};

// Returns the directory of the file, with all symbolic links resolved. The file need not exist.
std::string directoryOf(const std::string& file);

// Returns the value of --wait in milliseconds. Fails when it is not a number of seconds.
unsigned int parseWait(const std::string& seconds);

}  // namespace tool

#endif
