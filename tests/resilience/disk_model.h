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

// A model of a disk after a power cut. It takes recorded calls one by one and stores their effects
// until a sync. Any set of the stored effects may be lost, in any order. An effect is a piece of a
// file's data, or one entry of a directory. If a later piece of a file is on the disk and an
// earlier one is not, the gap has zeros.
class DiskModel {
 public:
  using Files = std::map<std::string, std::string>;

  // Starts with the files below these directories, which are all durable.
  explicit DiskModel(const std::vector<std::string>& roots);

  // Returns whether the call changed anything.
  bool apply(const RecordedCall& call);

  // Returns how many effects a power cut could lose now.
  std::size_t pending() const { return m_pending.size(); }

  // Returns the files after a power cut. Only the effects for which `spared` returns true are on
  // the disk.
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
  // Returns the number of the file that the descriptor of the call is for.
  int fileOf(const RecordedCall& call) const;

  Disk m_durable;
  Disk m_live;  // as the running system sees the files
  std::vector<Effect> m_pending;
  std::map<int, int> m_opened;  // the existing file that each open found
  std::map<int, std::size_t> m_written;
  std::set<int> m_openDirectories;
};

}  // namespace test

#endif
