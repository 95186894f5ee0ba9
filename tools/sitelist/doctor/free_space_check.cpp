#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <cerrno>
#include <set>

#include "host/fs/file_system.h"
#include "tools/sitelist/doctor/checks.h"

namespace tool {
namespace {

constexpr unsigned long long c_megabyte = 1ULL << 20;
// A change writes four copies: the list, the mesh copy, and the old list twice (pending and
// complete).
constexpr unsigned long long c_copies = 4;
// The reserve for key files, directories and partly filled blocks.
constexpr unsigned long long c_besides = c_megabyte;
constexpr unsigned long long c_leastFiles = 16;

void checkFileSystem(const ExaminedAgent& agent, const std::string& directory, Findings& findings) {
  struct statvfs space {};
  if (::statvfs(directory.c_str(), &space) != 0) {
    if (errno != ENOENT) addUnchecked(agent, directory, errno, findings);
    return;
  }
  const unsigned long long bytes = static_cast<unsigned long long>(space.f_bavail) *
                                   (space.f_frsize ? space.f_frsize : space.f_bsize);
  const std::string place = "the file system of " + agent.nameOf(directory);
  const bool countsFiles = space.f_files != 0;
  const std::string next = "remove files that are not needed from this file system";
  if (bytes < c_copies * agent.listBytes.size() + c_besides) {
    findings.fail(place + " has too little free space to write the list: " +
                      std::to_string(bytes / 1024) + " KiB",
                  next, directory);
  } else if (countsFiles && space.f_favail < c_leastFiles) {
    findings.fail(place + " has room for only " + std::to_string(space.f_favail) + " more " +
                      (space.f_favail == 1 ? "file" : "files"),
                  next, directory);
  } else if (bytes < c_lowMegabytes * c_megabyte) {
    findings.warn(place + " has only " + std::to_string(bytes / c_megabyte) + " MiB free", next,
                  directory);
  }
}

}  // namespace

void checkFreeSpace(const ExaminedAgent& agent, Findings& findings) {
  std::set<dev_t> checked;
  for (const std::string& directory :
       {agent.settings.dataDirectory, agent.meshPath.substr(0, agent.meshPath.rfind('/') + 1)}) {
    struct stat status {};
    if (::stat(directory.c_str(), &status) == 0 && !checked.insert(status.st_dev).second) continue;
    checkFileSystem(agent, directory, findings);
  }
  findings.okIfNone("there is enough free space to write the list");
}

}  // namespace tool
