#ifndef TESTS_SUPPORT_RECORDING_FILE_SYSTEM_H
#define TESTS_SUPPORT_RECORDING_FILE_SYSTEM_H

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "host/fs/file_system.h"
#include "tests/support/file_call.h"

namespace test {

struct RecordedCall {
  FileCall call;
  // What the call was about: the path it named, or the one that its descriptor was opened by. Full
  // when it counted from a directory that was opened by full path.
  std::string path;
  // The number of the open, from 1 on, that gave or will give the descriptor used; 0 for none.
  // Tells apart what a reused descriptor number does not.
  int file = 0;
  std::string newPath;  // rename, link
  std::string data;     // the bytes written or read, or the link's target
  int flags = 0;        // open's flags, lock's operation, access' mode
  mode_t mode = 0;      // open, chmod, makeDirectory
  long result = 0;
};
std::ostream& operator<<(std::ostream& out, const RecordedCall& call);

// Stands before another file system, in force for the life of the object, and keeps every call in
// the order of their ends.
class RecordingFileSystem : public host::FileSystem {
 public:
  explicit RecordingFileSystem(host::FileSystem& behind = host::posixFileSystem());
  ~RecordingFileSystem() override;

  std::vector<RecordedCall> calls() const;
  void forget();

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
  struct OpenFile {
    int number;
    std::string path;
  };

  RecordedCall about(FileCall call, int fd) const;
  RecordedCall about(FileCall call, int directory, const std::string& path) const;
  std::string full(int directory, const std::string& path) const;
  template <typename Result>
  Result keep(RecordedCall call, Result result);

  host::FileSystem& m_behind;
  mutable std::mutex m_mutex;
  std::map<int, OpenFile> m_open;
  int m_opens = 0;
  std::vector<RecordedCall> m_calls;
};

}  // namespace test

#endif
