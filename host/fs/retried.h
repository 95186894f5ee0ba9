#ifndef HOST_FS_RETRIED_H
#define HOST_FS_RETRIED_H

#include <cerrno>

namespace host {

// Repeats a system call that a signal interrupts. Returns the result of the call, or the negated
// errno of its failure.
template <typename Call>
auto retried(Call call) -> decltype(call()) {
  for (;;) {
    const auto result = call();
    if (result >= 0) return result;
    if (errno != EINTR) return -errno;
  }
}

}  // namespace host

#endif
