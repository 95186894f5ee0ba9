#include "tools/sitelist/cli/input.h"

#include <unistd.h>

#include <cerrno>

#include "host/fs/files.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/read_error.h"

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

int tryReadInput(const std::string& file, Input& input) {
  const bool isStandard = file.empty() || file == "-";
  input.name = isStandard ? "standard input" : file;
  return isStandard ? readStandardInput(input.bytes)
                    : host::readRegularFile(file, c_maxInputBytes, input.bytes);
}

Input readInput(const std::string& file) {
  Input input;
  const int error = tryReadInput(file, input);
  if (error == 0) return input;
  if (error == ENOENT) {
    throw failureAt(input.name, exitFile, "the file does not exist", "check the path");
  }
  throw failureAt(input.name, exitFile, "cannot be read: " + readFailureReason(error), c_checkFile);
}

}  // namespace tool
