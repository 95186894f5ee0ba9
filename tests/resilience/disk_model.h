#ifndef TESTS_RESILIENCE_DISK_MODEL_H
#define TESTS_RESILIENCE_DISK_MODEL_H

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/support/recording_file_system.h"

namespace test {

// What a disk may hold after a power cut. It takes recorded calls one by one and remembers which of
// their effects no sync has reached. Of those each may have come to the disk or not, whatever the
// order they were made in: pieces of a file's data, and each entry of a directory. A file whose
// later piece came and whose earlier one did not holds zeros between.
class DiskModel {
 public:
  using Files = std::map<std::string, std::string>;

  // Starts with what lies under these directories, all of it durable.
  explicit DiskModel(const std::vector<std::string>& roots);

  // Returns whether the call changed anything.
  bool apply(const RecordedCall& call);

  // How many effects could be lost now.
  std::size_t pending() const { return m_pending.size(); }

  // The files after a power cut that spared those effects, by number, for which `spared` is true.
  Files afterPowerCut(const std::function<bool(std::size_t number)>& spared) const;

 private:
  enum class Kind { Data, Enter, Rename, Remove, MakeDirectory };
  struct Effect {
    Kind kind;
    int file = 0;
    std::string path;
    std::string newPath;
    std::size_t offset = 0;
    std::string bytes;
  };
  struct Disk {
    std::map<std::string, int> entries;
    std::map<int, std::string> contents;
    std::set<std::string> directories;
    void take(const Effect& effect);
  };

  static bool isIn(const Effect& effect, const std::string& directory);
  void add(Effect effect);
  void sync(const RecordedCall& call);

  Disk m_durable;
  Disk m_live;  // as the running system sees it
  std::vector<Effect> m_pending;
  std::map<int, std::size_t> m_written;
  std::set<int> m_openDirectories;
};

}  // namespace test

#endif
