#include "tests/links/outside.h"

#include <sys/stat.h>

#include <filesystem>

#include "tests/support/file_times.h"

namespace fs = std::filesystem;

namespace test {
namespace {

std::string describe(const std::string& path, bool withChange) {
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0) return "gone";
  std::string all = "mode " + std::to_string(info.st_mode) + ", owner " +
                    std::to_string(info.st_uid) + ":" + std::to_string(info.st_gid) + ", written " +
                    timeText(writtenAt(info));
  if (withChange) all += ", changed " + timeText(changedAt(info));
  if (S_ISREG(info.st_mode)) all += ", bytes " + readFile(path);
  return all;
}

}  // namespace

void Outside::prepare(const std::string& bytes, const std::string& likeThis) {
  for (const std::string& old : {file(), directory()}) fs::remove_all(old);
  writeFile(file(), bytes, 0644);
  if (fs::is_directory(likeThis)) {
    fs::copy(likeThis, directory(), fs::copy_options::recursive);
  } else {
    writeFile(directory() + "/file", bytes, 0644);
  }
}

std::map<std::string, std::string> Outside::state(bool withChangeOfFile) const {
  std::map<std::string, std::string> all;
  all[m_dir.path()] = describe(m_dir.path(), true);
  for (const auto& entry : fs::recursive_directory_iterator(m_dir.path())) {
    const std::string path = entry.path().string();
    all[path] = describe(path, withChangeOfFile || path != file());
  }
  return all;
}

std::string difference(const std::map<std::string, std::string>& before,
                       const std::map<std::string, std::string>& after) {
  for (const auto& [path, now] : after) {
    const auto old = before.find(path);
    if (old == before.end()) return path + " is new";
    if (old->second != now) return path + " was " + old->second + ", and is " + now;
  }
  for (const auto& [path, was] : before) {
    if (after.count(path) == 0) return path + " is gone";
  }
  return std::string();
}

}  // namespace test
