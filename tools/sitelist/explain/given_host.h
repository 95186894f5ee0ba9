#ifndef TOOLS_SITELIST_EXPLAIN_GIVEN_HOST_H
#define TOOLS_SITELIST_EXPLAIN_GIVEN_HOST_H

#include <string>

namespace tool {

// A host as the command line names it.
struct GivenHost {
  std::wstring name;   // as sites have it: an IPv6 address is in brackets
  bool isFtp = false;  // of an ftp URL
};

// Gets the host from HOST, HOST:PORT or a URL. The port is checked. The result has no port and no
// path, because the choice of a proxy does not depend on them. Fails for any other text.
GivenHost parseHost(const std::string& given);

}  // namespace tool

#endif
