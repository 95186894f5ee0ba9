#ifndef TESTS_EDIT_LOCK_WATCH_H
#define TESTS_EDIT_LOCK_WATCH_H

#include <fcntl.h>

#include <string>
#include <vector>

#include "platform/lock/interprocess_lock.h"
#include "sitehlp/sites_helper.h"
#include "tests/support/forwarding_file_system.h"

namespace test {

// Records how "SiteListLock" is held when one of the named files is opened for reading or replaced,
// for the life of the object. Entries are "read NAME: none", "read NAME: reading" and "write NAME:
// writing".
class LockWatch : public ForwardingFileSystem {
 public:
  explicit LockWatch(std::vector<std::string> names) : m_names(std::move(names)) {}

  std::vector<std::string> seen;

  int open(int directory, const std::string& path, int flags, mode_t mode) override {
    if ((flags & O_ACCMODE) == O_RDONLY) note("read ", path.substr(path.rfind('/') + 1));
    return ForwardingFileSystem::open(directory, path, flags, mode);
  }
  int rename(int directory, const std::string& from, const std::string& to) override {
    note("write ", to);
    return ForwardingFileSystem::rename(directory, from, to);
  }

 private:
  void note(const std::string& what, const std::string& name) {
    for (const std::string& each : m_names) {
      if (each == name) seen.push_back(what + name + ": " + state());
    }
  }
  static std::string state() {
    using namespace korvel_com::orb::lock;
    InterProcessWriteLock writer(sitehlp::c_siteListLock);
    if (writer.lock(0)) return "none";
    InterProcessReadLock reader(sitehlp::c_siteListLock);
    return reader.lock(0) ? "reading" : "writing";
  }

  std::vector<std::string> m_names;
};

}  // namespace test

#endif
