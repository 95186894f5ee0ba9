#ifndef TESTS_SUPPORT_FILE_CALL_H
#define TESTS_SUPPORT_FILE_CALL_H

#include <ostream>

namespace test {

// The calls of host::FileSystem.
enum class FileCall {
  Open,
  Read,
  Write,
  Sync,
  Close,
  Lock,
  Chmod,
  Chown,
  StatOpen,
  Stat,
  ReadLink,
  List,
  Rename,
  Link,
  Unlink,
  MakeDirectory,
  Access
};

const char* nameOf(FileCall call);
inline std::ostream& operator<<(std::ostream& out, FileCall call) { return out << nameOf(call); }

}  // namespace test

#endif
