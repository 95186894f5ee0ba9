#ifndef HOST_PROCESS_SECRET_H
#define HOST_PROCESS_SECRET_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

// Keys and clear text. Their memory is wiped before it is released. One object must not be used by
// two threads at the same time.
namespace host {

// Overwrites memory, even if nothing reads it afterwards. `memory` may be null when `size` is 0.
void wipe(void* memory, std::size_t size) noexcept;

// Wipes memory before it releases it, so a container of secrets is also wiped when it grows. Must
// not be used for strings, because a short string is not in allocated memory.
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

// A std::string or std::wstring for interfaces that need one. The destructor wipes it. It must have
// its full capacity before it is filled, because growing does not wipe the old memory.
template <typename Text>
class Secret {
 public:
  explicit Secret(std::size_t size = 0) : m_text(size, typename Text::value_type()) {}
  ~Secret() {
    m_text.resize(m_text.capacity());  // does not allocate
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
