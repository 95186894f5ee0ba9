#ifndef HOST_FS_CHANGE_TIME_H
#define HOST_FS_CHANGE_TIME_H

#include <sys/stat.h>

#include <ctime>

namespace host {

// Returns the time when the content or the status of a file last changed.
inline timespec changeTime(const struct stat& status) {
#ifdef __APPLE__
  return status.st_ctimespec;
#else
  return status.st_ctim;
#endif
}

}  // namespace host

#endif
