#ifndef TOOLS_SITELIST_EXPLAIN_GIVEN_HOST_H
#define TOOLS_SITELIST_EXPLAIN_GIVEN_HOST_H

#include <string>

namespace tool {

// A host as the command line names it.
struct GivenHost {
  std::wstring name;   // as sites have it: an IPv6 address is in brackets
  bool isFtp = false;  // of an ftp URL
};

// Takes HOST, HOST:PORT and a URL apart. The port and the rest of a URL are checked and left out,
// because the choice of a proxy does not depend on them. Fails for what is none of these.
GivenHost parseHost(const std::string& given);

}  // namespace tool

#endif
