#ifndef HOST_LOCK_LOCK_FILES_H
#define HOST_LOCK_LOCK_FILES_H

#include <sys/types.h>

#include <string>

namespace host {

// The two open files behind one lock. Each holder has files of its own, because a kernel lock
// belongs to the open file: with a shared one, two threads would share the lock.
struct LockFiles {
  struct File {
    std::string path;
    int fd = -1;
    dev_t device = 0;
    ino_t inode = 0;
  };
  File main;
  File gate;

  // Whether the paths still lead to the files that are open. 0, ESTALE, or why it cannot be told.
  int check() const;
  // Does nothing when they are closed.
  void close();
};

// Why lock files cannot be opened: the path that it happened with, and the reason and what to do
// where the errno does not say enough.
struct LockFailure {
  std::string path;
  std::string reason;
  std::string advice;
};

// Opens the files of the lock `name` in the agent's lock directory, and makes what is missing for
// the owner of the directory alone. A lock file must be a regular file and no symbolic link; on the
// way to the directory, links are followed as for a write. 0; ESTALE when somebody removes what is
// made here; or another errno. After a failure `failure` says why. Files that were opened stay
// open; the caller closes them.
int openLockFiles(const std::string& directory, const std::string& name, LockFiles& files,
                  LockFailure& failure);

}  // namespace host

#endif
