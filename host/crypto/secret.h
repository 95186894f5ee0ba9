#ifndef HOST_CRYPTO_SECRET_H
#define HOST_CRYPTO_SECRET_H

#include <openssl/crypto.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace host {

// Wipes memory before it gives it back, so that a container of secrets needs no care when it grows
// or dies.
template <typename T>
struct WipingAllocator {
  using value_type = T;

  WipingAllocator() = default;
  template <typename U>
  WipingAllocator(const WipingAllocator<U>&) noexcept {}

  T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
  void deallocate(T* memory, std::size_t count) noexcept {
    OPENSSL_cleanse(memory, count * sizeof(T));
    std::allocator<T>().deallocate(memory, count);
  }

  template <typename U>
  bool operator==(const WipingAllocator<U>&) const noexcept {
    return true;
  }
  template <typename U>
  bool operator!=(const WipingAllocator<U>&) const noexcept {
    return false;
  }
};

// Keys and clear text.
using SecretBytes = std::vector<unsigned char, WipingAllocator<unsigned char>>;

}  // namespace host

#endif
