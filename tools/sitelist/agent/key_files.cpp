#include "tools/sitelist/agent/key_files.h"

#include <cerrno>

#include "host/fs/files.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {

bool hasVersionedServer(const sitehlp::tag_Site* sites) {
  for (const sitehlp::tag_Site* site = sites; site; site = site->pNext) {
    if (std::string(kindOf(*site)) == "server" && site->http.szVersion[0]) return true;
  }
  return false;
}

std::string whyUnusable(const std::string& path) {
  std::string nothing;
  const int error = host::readRegularFile(path, 0, nothing);
  if (error == EFBIG) return "";
  return error ? readFailureReason(error) : "it is empty";
}

}  // namespace tool
