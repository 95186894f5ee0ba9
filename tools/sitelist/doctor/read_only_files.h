#ifndef TOOLS_SITELIST_DOCTOR_READ_ONLY_FILES_H
#define TOOLS_SITELIST_DOCTOR_READ_ONLY_FILES_H

#include "host/fs/file_system.h"

namespace tool {

// Refuses every call that would change a file or directory, for the life of the object. The
// libraries then behave as on a file system that is mounted for reading only: they create no lock
// files and no key, and correct no mode.
class ReadOnlyFiles : public host::FileSystem {
 public:
  ReadOnlyFiles();
  ~ReadOnlyFiles() override;

  int open(int directory, const std::string& path, int flags, mode_t mode) override;
  ssize_t read(int fd, void* data, std::size_t size) override;
  ssize_t write(int fd, const void* data, std::size_t size) override;
  int sync(int fd) override;
  int close(int fd) override;
  int lock(int fd, int operation) override;
  int chmod(int fd, mode_t mode) override;
  int chown(int fd, uid_t owner, gid_t group) override;
  int statOpen(int fd, struct stat& out) override;
  int stat(int directory, const std::string& path, bool follow, struct stat& out) override;
  int readLink(int directory, const std::string& path, std::string& target,
               struct stat& link) override;
  int list(int directory, std::vector<std::string>& names) override;
  int rename(int directory, const std::string& from, const std::string& to) override;
  int link(int directory, const std::string& from, const std::string& to) override;
  int unlink(int directory, const std::string& path) override;
  int makeDirectory(int directory, const std::string& path, mode_t mode) override;
  int access(const std::string& path, int mode) override;

 private:
  host::FileSystem& m_behind;
};

}  // namespace tool

#endif
