#ifndef TESTS_SUPPORT_FOREIGN_LINKS_H
#define TESTS_SUPPORT_FOREIGN_LINKS_H

#include <unistd.h>

#include <string>

#include "tests/support/faulty_file_system.h"

namespace test {

// The real file system, but with other owners for some symbolic links. A link whose name begins
// with "foreign" belongs to a third user. One whose name begins with "root" belongs to root.
class ForeignLinks : public FaultyFileSystem {
 public:
  static uid_t stranger() { return ::geteuid() + 7; }

  int readLink(int directory, const std::string& path, std::string& target,
               struct stat& link) override {
    const int result = FaultyFileSystem::readLink(directory, path, target, link);
    if (path.rfind("foreign", 0) == 0) link.st_uid = stranger();
    if (path.rfind("root", 0) == 0) link.st_uid = 0;
    return result;
  }
};

}  // namespace test

#endif
