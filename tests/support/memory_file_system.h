#ifndef TESTS_SUPPORT_MEMORY_FILE_SYSTEM_H
#define TESTS_SUPPORT_MEMORY_FILE_SYSTEM_H

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/fs/file_system.h"

namespace test {

// A file system in memory, in force for the life of the object. It has regular files with their
// modes. A directory exists if it was created or has a file. There are no links. A lock never
// waits, because there is only one process. One object must not be used by two threads.
class MemoryFileSystem : public host::FileSystem {
 public:
  MemoryFileSystem();
  ~MemoryFileSystem() override;

  void put(const std::string& path, const std::string& bytes, mode_t mode = 0600);
  // Returns the content of a file, or null if it does not exist.
  const std::string* find(const std::string& path) const;
  // Removes all directories and files, except the files in this directory and below it.
  void clear(const std::string& kept);
  std::size_t openDescriptors() const { return m_open.size(); }
  // Returns the paths of all files.
  std::vector<std::string> paths() const;

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
  struct File {
    std::string bytes;
    mode_t mode = 0600;
    ino_t number = 0;
    nlink_t names = 1;
  };
  struct Open {
    std::shared_ptr<File> file;  // null for a directory
    std::string path;
    std::size_t position = 0;
  };

  std::string full(int directory, const std::string& path) const;
  bool isDirectory(const std::string& path) const;
  static void describe(const File* file, struct stat& out);

  std::map<std::string, std::shared_ptr<File>> m_files;
  std::set<std::string> m_directories;
  std::map<int, Open> m_open;
  int m_next;
  ino_t m_number = 1;
};

}  // namespace test

#endif
