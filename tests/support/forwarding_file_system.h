#ifndef TESTS_SUPPORT_FORWARDING_FILE_SYSTEM_H
#define TESTS_SUPPORT_FORWARDING_FILE_SYSTEM_H

#include <string_view>

#include "host/fs/file_system.h"
#include "tests/support/file_call.h"

namespace test {

// One call and its arguments. Arguments that the call does not have keep these defaults.
struct FileArguments {
  FileCall call;
  int fd = -1;                        // the descriptor, or the directory that `path` is relative to
  std::string_view path{};            // the path, if the call has one
  std::string_view newPath{};         // rename, link
  int flags = 0;                      // flags of open, operation of lock, mode of access
  mode_t mode = 0;                    // open, chmod, makeDirectory
  const void* data = nullptr;         // the bytes to write, or the buffer for a read
  const std::string* text = nullptr;  // the target of readLink
};

// Forwards every call to another file system. It is in force for the life of the object. Fakes
// override the calls that they change, or examine all calls.
class ForwardingFileSystem : public host::FileSystem {
 public:
  explicit ForwardingFileSystem(host::FileSystem& behind = host::posixFileSystem());
  ~ForwardingFileSystem() override;

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

 protected:
  host::FileSystem& behind() { return m_behind; }

 private:
  // Called before each call. Returns 0, or an errno with which the call fails without being
  // forwarded. A close is always forwarded.
  virtual int before(const FileArguments& call);
  // Called after each call with its result.
  virtual void after(const FileArguments& call, long result);

  template <typename Forward>
  auto pass(const FileArguments& call, Forward forward);

  host::FileSystem& m_behind;
};

}  // namespace test

#endif
