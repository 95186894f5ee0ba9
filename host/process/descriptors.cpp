#include "host/process/descriptors.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace host {

#ifdef __GLIBC__

int descriptorLimit() { return 0; }

void closeDescriptors(int first, int /*limit*/) { ::closefrom(first); }

#else

int descriptorLimit() {
  int highest = 256;
  DIR* const descriptors = ::opendir("/dev/fd");
  if (!descriptors) return std::numeric_limits<short>::max();
  while (const dirent* const entry = ::readdir(descriptors)) {
    highest = std::max(highest, std::atoi(entry->d_name));
  }
  ::closedir(descriptors);
  return highest + 64;
}

void closeDescriptors(int first, int limit) {
  for (int fd = first; fd < limit; ++fd) ::close(fd);
}

#endif

}  // namespace host
