#ifndef TESTS_SUPPORT_SYNCED_PATHS_H
#define TESTS_SUPPORT_SYNCED_PATHS_H

#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/recording_file_system.h"

namespace test {

// Returns the path of each sync below `root`, in order and without `root`. A temporary file has the
// path that it gets by a later rename.
inline std::vector<std::string> syncedPaths(const RecordingFileSystem& files,
                                            const std::string& root) {
  const std::vector<RecordedCall> calls = files.calls();
  std::vector<std::string> paths;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    if (calls[i].call != FileCall::Sync || calls[i].path.rfind(root + "/", 0) != 0) continue;
    std::string path = calls[i].path;
    for (std::size_t later = i; later < calls.size(); ++later) {
      if (calls[later].call == FileCall::Rename && calls[later].path == path) {
        path = calls[later].newPath;
      }
    }
    paths.push_back(path.substr(root.size() + 1));
  }
  return paths;
}

}  // namespace test

#endif
