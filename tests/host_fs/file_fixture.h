#ifndef TESTS_HOST_FS_FILE_FIXTURE_H
#define TESTS_HOST_FS_FILE_FIXTURE_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <set>
#include <string>

#include "host/fs/files.h"
#include "tests/support/test_agent.h"

namespace test {

class FileTest : public testing::Test {
 protected:
  TempDir dir;

  std::string path(const std::string& name) const { return dir.file(name); }

  // Returns every name in the directory, including hidden ones.
  std::set<std::string> names() const { return namesIn(dir.path()); }

  static std::set<std::string> namesIn(const std::string& directory) {
    std::set<std::string> result;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
      result.insert(entry.path().filename().string());
    }
    return result;
  }

  static mode_t modeOf(const std::string& file) {
    struct stat info {};
    EXPECT_EQ(::stat(file.c_str(), &info), 0) << file;
    return info.st_mode & 07777;
  }

  static int replace(const std::string& file, const std::string& bytes, mode_t modeOfNew = 0600) {
    return host::replaceFile(file, bytes.data(), bytes.size(), modeOfNew);
  }

  static std::ptrdiff_t openDescriptors() {
    const std::filesystem::directory_iterator all("/dev/fd");
    return std::distance(begin(all), end(all));
  }
};

}  // namespace test

#endif
