#include <fcntl.h>
#include <openssl/crypto.h>

#include <algorithm>
#include <cerrno>

#include "host/fs/descriptor.h"
#include "host/fs/files.h"

namespace host {
namespace {

// A text that is wiped wherever its memory is given back: the file may hold a key.
class Buffer {
 public:
  explicit Buffer(std::size_t size) : m_bytes(size, '\0') {}
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  ~Buffer() { OPENSSL_cleanse(m_bytes.data(), m_bytes.size()); }

  void grow(std::size_t size) {
    Buffer larger(size);
    std::copy(m_bytes.begin(), m_bytes.end(), larger.m_bytes.begin());
    m_bytes.swap(larger.m_bytes);
  }

  std::string& bytes() { return m_bytes; }

 private:
  std::string m_bytes;
};

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

int readRegularFile(const std::string& path, std::size_t limit, std::string& bytes) {
  // Non-blocking, or opening a pipe would wait for its writer.
  const Descriptor file(fileSystem().open(AT_FDCWD, path, O_RDONLY | O_NONBLOCK | O_NOCTTY, 0));
  if (file.error() == ENXIO || file.error() == EOPNOTSUPP) return EINVAL;  // a socket
  if (file.error()) return file.error();
  std::size_t size = 0;
  if (const int error = checkRegular(file.get(), limit, size)) return error;

  // One byte more than the size, so that the end shows without growing.
  Buffer buffer(size + 1);
  std::size_t done = 0;
  for (;;) {
    if (done == buffer.bytes().size()) buffer.grow(2 * done);
    const ssize_t n =
        fileSystem().read(file.get(), &buffer.bytes()[done], buffer.bytes().size() - done);
    if (n < 0) return static_cast<int>(-n);
    if (n == 0) break;
    done += static_cast<std::size_t>(n);
    if (done > limit) return EFBIG;  // it grew meanwhile
  }
  OPENSSL_cleanse(&buffer.bytes()[done], buffer.bytes().size() - done);
  buffer.bytes().resize(done);
  bytes.swap(buffer.bytes());
  return 0;
}

}  // namespace host
