#include "sitehlp/common/wipe.h"

#include <cstring>

namespace sitehlp {

void wipeMemory(void* memory, std::size_t size) noexcept {
  // The compiler cannot prove that a call through a volatile pointer is memset, so it does not
  // remove the call.
  static void* (*volatile const set)(void*, int, std::size_t) = std::memset;
  if (size != 0) set(memory, 0, size);
}

}  // namespace sitehlp
