#ifndef TOOLS_SITELIST_AGENT_SCRATCH_DIRECTORY_H
#define TOOLS_SITELIST_AGENT_SCRATCH_DIRECTORY_H

#include <signal.h>

#include <string>

#include "host/lock/directory_lock.h"

namespace tool {

// Blocks the signals that end a program from outside, for the life of the object. A signal that
// arrives during this time takes effect afterwards. One thread only.
class SignalsBlocked {
 public:
  SignalsBlocked();
  ~SignalsBlocked();
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  static int s_count;  // of the objects; signals stay blocked until the last one ends
  static sigset_t s_before;
};

// A new directory for drafts, for the effective user alone. It is removed with all its content when
// the object ends, and no signal except SIGKILL prevents that. It stays locked as long as its
// process lives. A new ScratchDirectory in the same parent removes the directories of processes
// that have ended.
//
// While the object exists, the caller must not wait for another process.
class ScratchDirectory {
 public:
  // In the system's directory for temporary files. Fails when it cannot be created.
  ScratchDirectory();
  // In the directory `parent`.
  explicit ScratchDirectory(const std::string& parent);
  ~ScratchDirectory();
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;

  const std::string& path() const { return m_path; }

 private:
  ScratchDirectory(const std::string& parent, const std::string& advice);
  int create(const std::string& parent);

  SignalsBlocked m_signalsBlocked;
  std::string m_path;
  host::DirectoryLock m_lock;
};

}  // namespace tool

#endif
