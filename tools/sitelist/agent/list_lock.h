#ifndef TOOLS_SITELIST_AGENT_LIST_LOCK_H
#define TOOLS_SITELIST_AGENT_LIST_LOCK_H

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "host/lock/directory_lock.h"
#include "host/lock/lock_hold.h"
#include "tools/sitelist/report/context.h"

namespace tool {

// What a command does with a list: reads it, reads it through the library's cache, or changes it.
enum class ListUse { Read, ReadCached, Change };

// Holds the lock of a list from a command's first read to its last write. The library's operations
// take the same lock and get it at once.
//
// The lock of the agent's own list is the agent's "SiteListLock". The mesh service's load command
// runs without it. The lock of another file is that of its directory, and the agent's as well if
// its lock files may be used. Only a change takes the lock of another file, because a read finds
// one whole list without it.
class ListLock {
 public:
  // An empty file name means the agent's own list. Serves the agent whose lock it takes. Waits as
  // long as --wait says; says so on a terminal. Fails when the lock is not to be had, except for a
  // read when the lock files cannot be used: the library logs that, and reads.
  ListLock(const Context& context, const std::string& file, ListUse use);

  // Fails when a named file was changed since the lock was taken: by a program that does not take
  // the lock, or in a directory that cannot be locked. Must be called before the file is written.
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
  host::DirectoryLock m_directory;
  std::optional<std::string> m_state;  // of a named file that is to be changed
};

// The value of --wait in milliseconds. Fails when it is not a number of seconds.
unsigned int parseWait(const std::string& seconds);

}  // namespace tool

#endif
