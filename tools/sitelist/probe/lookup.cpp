#include "tools/sitelist/probe/lookup.h"

#include <dirent.h>
#include <netdb.h>
#include <pwd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>

namespace tool {
namespace {

struct FreeAddressList {
  void operator()(addrinfo* first) const { ::freeaddrinfo(first); }
};
struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

std::string lookupError(int error) { return std::generic_category().message(error); }

}  // namespace

Lookup resolveHost(const std::string& host) {
  constexpr std::size_t c_mostAddresses = 16;
  addrinfo hints = {};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int error = ::getaddrinfo(host.c_str(), nullptr, &hints, &found);
  if (error == EAI_MEMORY) throw std::bad_alloc();
  if (error == EAI_SYSTEM) return {{}, lookupError(errno)};
  if (error != 0) return {{}, ::gai_strerror(error)};
  const std::unique_ptr<addrinfo, FreeAddressList> owner(found);
  Lookup lookup;
  for (const addrinfo* each = found; each; each = each->ai_next) {
    char text[NI_MAXHOST];
    if (::getnameinfo(each->ai_addr, each->ai_addrlen, text, sizeof text, nullptr, 0,
                      NI_NUMERICHOST) != 0) {
      continue;
    }
    std::vector<std::string>& all = lookup.addresses;
    if (std::find(all.begin(), all.end(), text) == all.end()) all.emplace_back(text);
    if (all.size() == c_mostAddresses) break;
  }
  if (lookup.addresses.empty()) lookup.error = "it has no address";
  return lookup;
}

Lookup openDirectory(const std::string& path) {
  const std::unique_ptr<DIR, CloseDirectory> directory(::opendir(path.c_str()));
  if (!directory) return {{}, lookupError(errno)};
  errno = 0;
  if (!::readdir(directory.get()) && errno != 0) return {{}, lookupError(errno)};
  return {};
}

std::string effectiveUser() {
  const uid_t user = ::geteuid();
  const passwd* const entry = ::getpwuid(user);  // the process has no other thread yet
  return entry ? entry->pw_name : std::to_string(user);
}

}  // namespace tool
