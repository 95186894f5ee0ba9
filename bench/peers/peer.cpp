#include "bench/peers/peer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>

#include "bench/check.h"
#include "bench/floors.h"
#include "bench/sample_agent.h"
#include "platform/lock/interprocess_lock.h"
#include "sitehlp/list.h"

namespace bench {

using korvel_com::orb::lock::InterProcessReadLock;
using sitehlp::tag_Site;

namespace {

std::string readWholeFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY);
  struct stat info = {};
  check(fd >= 0 && ::fstat(fd, &info) == 0, "cannot open a list");
  std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::read(fd, &bytes[done], bytes.size() - done);
    check(n > 0, "cannot read a list");
    done += static_cast<std::size_t>(n);
  }
  ::close(fd);
  return bytes;
}

std::string readUnderLock(const std::string& path) {
  InterProcessReadLock lock(sitehlp::c_siteListLock);
  check(lock.lock(korvel_com::orb::lock::c_waitForEver), "cannot lock");
  std::string bytes = readWholeFile(path);
  lock.unlock();
  return bytes;
}

// Compares all bytes except the chain.
bool same(const tag_Site& a, const tag_Site& b) {
  constexpr std::size_t c_rest = offsetof(tag_Site, pNext) + sizeof a.pNext;
  const auto* const left = reinterpret_cast<const char*>(&a);
  const auto* const right = reinterpret_cast<const char*>(&b);
  return std::memcmp(left, right, offsetof(tag_Site, pNext)) == 0 &&
         std::memcmp(left + c_rest, right + c_rest, sizeof a - c_rest) == 0;
}

}  // namespace

tag_Site* readRecords(const Peer& peer, const std::string& path) {
  std::string bytes = readUnderLock(path);
  return peer.parse(bytes);
}

void checkRecords(const Peer& peer, const std::string& path) {
  sitehlp::ListOwner expected;
  check(sitehlp::CSitesHelper(true).ReadSiteList(widePath(path), expected.out(), true) == 0,
        "cannot read the list");
  tag_Site* const records = readRecords(peer, path);
  const tag_Site* made = records;
  for (const tag_Site& site : expected) {
    check(made && same(*made, site), "a peer makes other records");
    made = made->pNext;
  }
  check(!made, "a peer makes more records");
  freeRecords(records);
}

}  // namespace bench
