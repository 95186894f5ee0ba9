#include "tools/sitelist/doctor/lock_holders.h"

#include <cstdio>
#include <fstream>
#include <sstream>
#ifdef __linux__
#include <sys/sysmacros.h>
#endif

#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/doctor/agent_user.h"

namespace tool {
namespace {

#ifdef __linux__

// Returns "MAJOR:MINOR:INODE", as the table has it.
std::string placeOf(const struct stat& file) {
  char device[32];
  std::snprintf(device, sizeof device, "%02x:%02x:", major(file.st_dev), minor(file.st_dev));
  return device + std::to_string(file.st_ino);
}

// On some file systems, the device number in the table differs from that of stat.
bool isSameInode(const std::string& place, const struct stat& file) {
  return place.substr(place.rfind(':') + 1) == std::to_string(file.st_ino);
}

#endif

}  // namespace

#ifdef __linux__

// A line is like "1: FLOCK  ADVISORY  WRITE 123 08:01:4711 0 EOF". A waiting process has "->"
// before its kind of lock.
std::set<pid_t> holdersOf(const struct stat& file) {
  std::ifstream table("/proc/locks");
  std::set<pid_t> exact;
  std::set<pid_t> similar;
  for (std::string line; std::getline(table, line);) {
    std::istringstream fields(line);
    std::string number;
    std::string kind;
    std::string strength;
    std::string mode;
    std::string place;
    pid_t process = 0;
    fields >> number >> kind >> strength >> mode >> process >> place;
    if (kind != "FLOCK" || process <= 0 || !isSameInode(place, file)) continue;
    (place == placeOf(file) ? exact : similar).insert(process);
  }
  return exact.empty() ? similar : exact;
}

std::string describeProcess(pid_t process) {
  const std::string directory = "/proc/" + std::to_string(process);
  const std::string text = "process " + std::to_string(process);
  std::string command;
  struct stat status;
  // A lock belongs to the open file, which children of the process may have.
  if (!std::getline(std::ifstream(directory + "/comm"), command) ||
      ::stat(directory.c_str(), &status) != 0) {
    return text + " (cannot be examined, or has ended and left the lock to a child)";
  }
  return text + " (" + shown(command) + ", " + userName(status.st_uid) + ")";
}

#else

std::set<pid_t> holdersOf(const struct stat& /*file*/) { return {}; }

std::string describeProcess(pid_t process) { return "process " + std::to_string(process); }

#endif

}  // namespace tool
