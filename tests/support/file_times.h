#ifndef TESTS_SUPPORT_FILE_TIMES_H
#define TESTS_SUPPORT_FILE_TIMES_H

#include <sys/stat.h>

#include <ctime>
#include <string>

namespace test {

// The times of the last write and of the last change of a file. The "struct stat" may be const.
#ifdef __APPLE__
template <typename Status>
auto& writtenAt(Status& status) {
  return status.st_mtimespec;
}
template <typename Status>
auto& changedAt(Status& status) {
  return status.st_ctimespec;
}
#else
template <typename Status>
auto& writtenAt(Status& status) {
  return status.st_mtim;
}
template <typename Status>
auto& changedAt(Status& status) {
  return status.st_ctim;
}
#endif

inline std::string timeText(const timespec& time) {
  return std::to_string(time.tv_sec) + "." + std::to_string(time.tv_nsec);
}

}  // namespace test

#endif
