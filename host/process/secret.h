#ifndef HOST_PROCESS_SECRET_H
#define HOST_PROCESS_SECRET_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

// Keys and clear text, wiped before their memory is given back. One object is used by one thread at
// a time.
namespace host {

// Overwrites memory, also when nobody reads it afterwards. `memory` may be null when `size` is 0.
void wipe(void* memory, std::size_t size) noexcept;

// Wipes memory before it gives it back, so that a container of secrets needs no care when it grows
// or dies. Not for strings: a short one is not in memory of its allocator.
template <typename T>
struct WipingAllocator {
  using value_type = T;

  WipingAllocator() = default;
  template <typename U>
  WipingAllocator(const WipingAllocator<U>&) noexcept {}

  T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
  void deallocate(T* memory, std::size_t count) noexcept {
    wipe(memory, count * sizeof(T));
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

using SecretBytes = std::vector<unsigned char, WipingAllocator<unsigned char>>;

// A std::string or std::wstring for interfaces that ask for one, wiped when the object dies. It
// must have all its room before it is filled: what a string leaves behind when it grows is not
// wiped.
template <typename Text>
class Secret {
 public:
  explicit Secret(std::size_t size = 0) : m_text(size, typename Text::value_type()) {}
  ~Secret() {
    m_text.resize(m_text.capacity());  // takes no memory
    wipe(m_text.data(), m_text.size() * sizeof(typename Text::value_type));
  }
  Secret(const Secret&) = delete;
  Secret& operator=(const Secret&) = delete;

  Text& operator*() { return m_text; }
  Text* operator->() { return &m_text; }

 private:
  Text m_text;
};

using SecretText = Secret<std::string>;
using SecretWideText = Secret<std::wstring>;

}  // namespace host

#endif
