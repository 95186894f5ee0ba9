#include "tests/support/file_call.h"

#include <cstddef>

namespace test {

const char* nameOf(FileCall call) {
  static const char* const names[] = {"open",          "read",  "write",  "sync",     "close",
                                      "lock",          "chmod", "chown",  "statOpen", "stat",
                                      "readLink",      "list",  "rename", "link",     "unlink",
                                      "makeDirectory", "access"};
  return names[static_cast<std::size_t>(call)];
}

}  // namespace test
