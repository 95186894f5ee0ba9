#ifndef TESTS_SUPPORT_REROOTED_FILE_SYSTEM_H
#define TESTS_SUPPORT_REROOTED_FILE_SYSTEM_H

#include <map>
#include <mutex>
#include <string>

#include "tests/support/faulty_file_system.h"

namespace test {

// Replaces the directory `from` and everything below it with `to`, for the life of the object. A
// test can thus let the library write to a fixed path without changing it. The directories above
// `from` need not exist.
class RerootedFileSystem : public FaultyFileSystem {
 public:
  RerootedFileSystem(std::string from, std::string to);

  int open(int directory, const std::string& path, int flags, mode_t mode) override;
  int close(int fd) override;
  int stat(int directory, const std::string& path, bool follow, struct stat& out) override;
  int readLink(int directory, const std::string& path, std::string& target,
               struct stat& link) override;
  int unlink(int directory, const std::string& path) override;
  int makeDirectory(int directory, const std::string& path, mode_t mode) override;
  int access(const std::string& path, int mode) override;

 private:
  struct Place {
    int directory;
    std::string path;
  };

  bool isAboveFrom(const std::string& path) const;
  std::string moved(const std::string& path) const;
  // If `directory` stands for a directory above `from`, returns the full path. Otherwise returns
  // `path`.
  std::string meant(int directory, const std::string& path);
  Place placeOf(int directory, const std::string& path);

  std::string m_from;
  std::string m_to;
  std::mutex m_mutex;
  std::map<int, std::string> m_above;  // open directories above `from`, by descriptor
};

}  // namespace test

#endif
