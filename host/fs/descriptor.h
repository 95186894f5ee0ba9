#ifndef HOST_FS_DESCRIPTOR_H
#define HOST_FS_DESCRIPTOR_H

#include <utility>

#include "host/fs/file_system.h"

namespace host {

// Owns an open descriptor, or the negated errno of the open that failed.
class Descriptor {
 public:
  explicit Descriptor(int fd) : m_fd(fd) {}
  Descriptor(Descriptor&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(m_fd, other.m_fd);
    return *this;
  }
  ~Descriptor() {
    if (m_fd >= 0) fileSystem().close(m_fd);
  }

  int get() const { return m_fd; }
  // Returns 0, or the errno of the failed open.
  int error() const { return m_fd < 0 ? -m_fd : 0; }

 private:
  int m_fd;
};

}  // namespace host

#endif
