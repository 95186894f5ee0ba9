#include "sitehlp/common/wipe.h"

#include <cstring>

namespace sitehlp {

void wipeMemory(void* memory, std::size_t size) noexcept {
  // A call through a volatile pointer cannot be proved to be a memset, so it is not removed.
  static void* (*volatile const set)(void*, int, std::size_t) = std::memset;
  if (size != 0) set(memory, 0, size);
}

}  // namespace sitehlp
