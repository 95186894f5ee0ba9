#ifndef HOST_LOCK_LOCK_FILES_H
#define HOST_LOCK_LOCK_FILES_H

#include <sys/types.h>

#include <string>

namespace host {

// The two open files of one lock. Each holder opens its own files, because a kernel lock belongs to
// the open file. Two threads with a shared open file would share the lock.
struct LockFiles {
  struct File {
    std::string path;
    int fd = -1;
    dev_t device = 0;
    ino_t inode = 0;
  };
  File main;
  File gate;

  // Determines whether the paths still lead to the open files. Returns 0 if they do, ESTALE if they
  // do not, or another errno.
  int check() const;
  // Closes the files. Does nothing if they are closed.
  void close();
};

// Why lock files cannot be opened. `reason` and `advice` are empty if the errno is sufficient.
struct LockFailure {
  std::string path;
  std::string reason;
  std::string advice;
};

// Opens the files of the lock `name` in the agent's lock directory. Creates missing files, which
// only their owner may use, and missing directories (mode 0755). A lock file must be a regular
// file. Symbolic links in the path of the directory are followed as for a write.
//
// Returns 0, ESTALE when another process removes what this call creates, or another errno. After a
// failure, `failure` has the reason, and the caller must close the files that were opened.
int openLockFiles(const std::string& directory, const std::string& name, LockFiles& files,
                  LockFailure& failure);

}  // namespace host

#endif
