#ifndef TESTS_SUPPORT_RECORDING_FILE_SYSTEM_H
#define TESTS_SUPPORT_RECORDING_FILE_SYSTEM_H

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/forwarding_file_system.h"

namespace test {

struct RecordedCall {
  FileCall call;
  // The path in the call, or the path with which its descriptor was opened. It is a full path if
  // the directory of the call was opened with a full path.
  std::string path;
  // The number, from 1, of the open that returned the descriptor of this call, or that this call
  // is. 0 for a call without a descriptor. It distinguishes files that had the same descriptor one
  // after the other.
  int file = 0;
  std::string newPath;  // rename, link
  std::string data;     // the bytes written or read, or the target of the link
  int flags = 0;        // flags of open, operation of lock, mode of access
  mode_t mode = 0;      // open, chmod, makeDirectory
  long result = 0;
};
std::ostream& operator<<(std::ostream& out, const RecordedCall& call);

// Records every call to another file system, in the order in which the calls end. It is in force
// for the life of the object.
class RecordingFileSystem : public ForwardingFileSystem {
 public:
  explicit RecordingFileSystem(host::FileSystem& behind = host::posixFileSystem());

  std::vector<RecordedCall> calls() const;
  void forget();

  int close(int fd) override;

 private:
  struct OpenFile {
    int number;
    std::string path;
  };

  void after(const FileArguments& call, long result) override;
  // The caller must hold the mutex.
  RecordedCall about(const FileArguments& call) const;
  std::string full(int directory, std::string_view path) const;

  mutable std::mutex m_mutex;
  std::map<int, OpenFile> m_open;
  int m_opens = 0;
  std::vector<RecordedCall> m_calls;
};

}  // namespace test

#endif
