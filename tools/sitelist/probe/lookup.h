#ifndef TOOLS_SITELIST_PROBE_LOOKUP_H
#define TOOLS_SITELIST_PROBE_LOOKUP_H

#include <string>
#include <vector>

namespace tool {

// What a call of the system found out. `error` is empty after a success.
struct Lookup {
  std::vector<std::string> addresses;  // of a host
  std::string error;
};

// Each function may block for a long time.

// Returns the IP addresses of a host, at most 16.
Lookup resolveHost(const std::string& host);
// Finds out whether the process may read a directory. The result has no address.
Lookup openDirectory(const std::string& path);

// Returns the name of the effective user, or the number of a user without a name.
std::string effectiveUser();

}  // namespace tool

#endif
