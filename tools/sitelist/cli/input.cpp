#include "tools/sitelist/cli/input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "host/fs/descriptor.h"
#include "host/fs/files.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/read_error.h"

namespace tool {
namespace {

int readToTheEnd(int descriptor, std::string& bytes) {
  char buffer[65536];
  while (bytes.size() <= c_maxInputBytes) {
    const ssize_t n = host::fileSystem().read(descriptor, buffer, sizeof buffer);
    if (n == 0) return 0;
    if (n < 0) return static_cast<int>(-n);
    bytes.append(buffer, static_cast<std::size_t>(n));
  }
  return EFBIG;
}

bool isPipe(const std::string& file, struct stat& status) {
  return host::fileSystem().stat(AT_FDCWD, file, true, status) == 0 && S_ISFIFO(status.st_mode);
}

int readPipe(const std::string& file, std::string& bytes) {
  const host::Descriptor pipe(host::fileSystem().open(AT_FDCWD, file, O_RDONLY | O_NOCTTY, 0));
  return pipe.error() ? pipe.error() : readToTheEnd(pipe.get(), bytes);
}

}  // namespace

void reserveStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) >= 0) continue;
    const bool isRead = stream == STDIN_FILENO;
    if (::open("/dev/null", isRead ? O_WRONLY : O_RDONLY) != stream) return;
  }
}

bool isStandardStream(const std::string& file) { return file == "-"; }

void refuseStandardStream(const std::string& file, const std::string& what) {
  if (!isStandardStream(file)) return;
  throw Failure(exitUsage, what + ": \"-\" does not name a file or directory",
                "write ./- if this is its name");
}

bool isStandardInput(const std::string& file) {
  struct stat status;
  struct stat standard;
  return isStandardStream(file) ||
         (isPipe(file, status) && ::fstat(STDIN_FILENO, &standard) == 0 &&
          standard.st_dev == status.st_dev && standard.st_ino == status.st_ino);
}

bool isReadOnce(const std::string& file) {
  struct stat status;
  return isStandardStream(file) || isPipe(file, status);
}

void takeStandardInput() {
  static bool isTaken = false;
  if (std::exchange(isTaken, true)) {
    throw Failure(exitUsage, "standard input can be read only once",
                  "name a file instead for one of its uses");
  }
}

int tryReadInput(const std::string& file, Input& input) {
  if (file.empty() || isStandardInput(file)) {
    input.name = file.empty() || isStandardStream(file) ? "standard input" : file;
    takeStandardInput();
    return readToTheEnd(STDIN_FILENO, input.bytes);
  }
  input.name = file;
  return isReadOnce(file) ? readPipe(file, input.bytes) : tryReadBytes(file, input.bytes);
}

Input readInput(const std::string& file) {
  Input input;
  if (const int error = tryReadInput(file, input)) throw inputFailure(input.name, error);
  return input;
}

Failure inputFailure(const std::string& name, int error) {
  if (error == ENOENT) {
    return failureAt(name, exitFile, "the file does not exist", "check the path");
  }
  return failureAt(name, exitFile, "cannot be read: " + readFailureReason(error),
                   error == EBADF ? c_openInput : c_checkFile);
}

int tryReadBytes(const std::string& path, std::string& bytes) {
  return host::readRegularFile(path, c_maxInputBytes, bytes);
}

}  // namespace tool
