#include "host/fs/read_file.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>

#include "host/fs/descriptor.h"
#include "host/fs/files.h"
#include "host/process/secret.h"

namespace host {
namespace {

// Grows into new memory and wipes the old memory, because the file may have a key.
void grow(SecretText& text, std::size_t size) {
  SecretText larger(size);
  std::copy(text->begin(), text->end(), larger->begin());
  text->swap(*larger);
}

int checkRegular(int fd, std::size_t limit, std::size_t& size) {
  struct stat info;
  if (const int failed = fileSystem().statOpen(fd, info)) return -failed;
  if (S_ISDIR(info.st_mode)) return EISDIR;
  if (!S_ISREG(info.st_mode)) return EINVAL;
  const auto length = static_cast<unsigned long long>(info.st_size);
  if (length > limit) return EFBIG;
  size = static_cast<std::size_t>(length);
  return 0;
}

}  // namespace

int readOpenFile(int fd, std::size_t limit, std::string& bytes) {
  std::size_t size = 0;
  if (const int error = checkRegular(fd, limit, size)) return error;

  // One byte more than the size, so that the end is found without growing.
  SecretText buffer(size + 1);
  std::size_t done = 0;
  for (;;) {
    if (done == buffer->size()) grow(buffer, 2 * done);
    const ssize_t n = fileSystem().read(fd, buffer->data() + done, buffer->size() - done);
    if (n < 0) return static_cast<int>(-n);
    if (n == 0) break;
    done += static_cast<std::size_t>(n);
    if (done > limit) return EFBIG;  // it grew during the read
  }
  wipe(buffer->data() + done, buffer->size() - done);
  buffer->resize(done);
  bytes.swap(*buffer);
  return 0;
}

int readRegularFile(const std::string& path, std::size_t limit, std::string& bytes) {
  // Without O_NONBLOCK, opening a pipe would wait for its writer.
  const Descriptor file(fileSystem().open(AT_FDCWD, path, O_RDONLY | O_NONBLOCK | O_NOCTTY, 0));
  if (file.error() == ENXIO || file.error() == EOPNOTSUPP) return EINVAL;  // a socket
  return file.error() ? file.error() : readOpenFile(file.get(), limit, bytes);
}

}  // namespace host
