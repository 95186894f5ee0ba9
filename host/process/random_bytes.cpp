#include "host/process/random_bytes.h"

#include <sys/random.h>  // on macOS, <unistd.h> does not declare getentropy
#include <unistd.h>

#include <cerrno>

namespace host {

int drawRandomBytes(void* memory, std::size_t size) {
  return ::getentropy(memory, size) == 0 ? 0 : errno;
}

}  // namespace host
