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
  // For a thread that has the mutex.
  RecordedCall about(const FileArguments& call) const;
  std::string full(int directory, std::string_view path) const;

  mutable std::mutex m_mutex;
  std::map<int, OpenFile> m_open;
  int m_opens = 0;
  std::vector<RecordedCall> m_calls;
};

}  // namespace test

#endif
