#ifndef TESTS_IMPORT_KEY_FILE_SYSTEM_H
#define TESTS_IMPORT_KEY_FILE_SYSTEM_H

#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "tests/support/forwarding_file_system.h"

namespace test {

// For the life of the object, refuses write access to some files, and the removal and replacement
// of others. Records the names of replaced and removed files, in order.
class KeyFileSystem : public ForwardingFileSystem {
 public:
  std::vector<std::string> readOnly;       // full paths
  std::vector<std::string> unanswerable;   // full paths for which access() fails
  std::vector<std::string> irremovable;    // names
  std::vector<std::string> irreplaceable;  // names
  std::vector<std::string> changes;        // "name" for a replaced file, "-name" for a removed one

  int access(const std::string& path, int mode) override {
    if (holds(unanswerable, path)) return -EIO;
    if (mode == W_OK && holds(readOnly, path)) return -EACCES;
    return ForwardingFileSystem::access(path, mode);
  }
  int stat(int directory, const std::string& path, bool follow, struct stat& out) override {
    if (holds(unanswerable, path)) return -EIO;
    return ForwardingFileSystem::stat(directory, path, follow, out);
  }
  int unlink(int directory, const std::string& path) override {
    const std::string name = path.substr(path.rfind('/') + 1);
    if (holds(irremovable, name)) return -EPERM;
    const int result = ForwardingFileSystem::unlink(directory, path);
    if (result == 0 && name[0] != '.') changes.push_back("-" + name);
    return result;
  }
  int rename(int directory, const std::string& from, const std::string& to) override {
    if (holds(irreplaceable, to)) return -EIO;
    const int result = ForwardingFileSystem::rename(directory, from, to);
    if (result == 0) changes.push_back(to);
    return result;
  }

 private:
  static bool holds(const std::vector<std::string>& all, const std::string& one) {
    for (const std::string& each : all) {
      if (each == one) return true;
    }
    return false;
  }
};

}  // namespace test

#endif
