#include "tools/sitelist/cli/input.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "host/fs/files.h"
#include "tools/sitelist/cli/failure.h"

namespace tool {
namespace {

int readStandardInput(std::string& bytes) {
  char buffer[65536];
  while (bytes.size() <= c_maxInputBytes) {
    const ssize_t n = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (n == 0) return 0;
    if (n > 0) {
      bytes.append(buffer, static_cast<std::size_t>(n));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return EFBIG;
}

}  // namespace

Input readInput(const std::string& file) {
  const bool isStandard = file.empty() || file == "-";
  Input input{isStandard ? "standard input" : file, {}};
  const int error = isStandard ? readStandardInput(input.bytes)
                               : host::readRegularFile(file, c_maxInputBytes, input.bytes);
  if (error == 0) return input;
  throw failureAt(input.name, exitFile, std::string("cannot be read: ") + std::strerror(error),
                  "check that it is a regular file that you may read");
}

}  // namespace tool
