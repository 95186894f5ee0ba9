#include "host/lock/directory_lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <utility>

#include "host/lock/file_lock.h"

namespace host {

DirectoryLock::~DirectoryLock() {
  // Only closing the descriptor would not release the lock if a child was forked in the meantime.
  if (m_directory.error() == 0) fileSystem().lock(m_directory.get(), LOCK_UN);
}

int DirectoryLock::lock(const std::string& directory, unsigned int waitMilliseconds) {
  Descriptor opened(fileSystem().open(AT_FDCWD, directory, O_RDONLY | O_DIRECTORY, 0));
  if (opened.error()) return opened.error();
  const int error = Patience(waitMilliseconds).lock(opened.get(), LOCK_EX);
  if (error == 0) m_directory = std::move(opened);
  return error;
}

}  // namespace host
