#ifndef TESTS_SUPPORT_REROOTED_FILE_SYSTEM_H
#define TESTS_SUPPORT_REROOTED_FILE_SYSTEM_H

#include <string>

#include "tests/support/faulty_file_system.h"

namespace test {

// While it lives, the directory `from` and all below it stand for `to`, so that a test can let the
// library write to a fixed place without touching it.
class RerootedFileSystem : public FaultyFileSystem {
 public:
  RerootedFileSystem(std::string from, std::string to);

  int open(int directory, const std::string& path, int flags, mode_t mode) override;
  int stat(int directory, const std::string& path, bool follow, struct stat& out) override;
  int readLink(int directory, const std::string& path, std::string& target) override;
  int unlink(int directory, const std::string& path) override;
  int makeDirectory(const std::string& path, mode_t mode) override;
  int access(const std::string& path, int mode) override;

 private:
  std::string moved(const std::string& path) const;

  std::string m_from;
  std::string m_to;
};

}  // namespace test

#endif
