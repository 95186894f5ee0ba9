#ifndef TESTS_EDIT_UNSYNCED_FILE_SYSTEM_H
#define TESTS_EDIT_UNSYNCED_FILE_SYSTEM_H

#include <string>

#include "tests/support/forwarding_file_system.h"

namespace test {

// Makes every sync return immediately, for the life of the object. It is for tests that write
// thousands of files. A file system may also wait when a file is replaced, so the old file is
// removed first.
class UnsyncedFileSystem : public ForwardingFileSystem {
 public:
  int sync(int) override { return 0; }
  int rename(int directory, const std::string& from, const std::string& to) override {
    ForwardingFileSystem::unlink(directory, to);
    return ForwardingFileSystem::rename(directory, from, to);
  }
};

}  // namespace test

#endif
