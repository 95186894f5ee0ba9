#ifndef SITEHLP_COMMON_WIPE_H
#define SITEHLP_COMMON_WIPE_H

#include <cstddef>

namespace sitehlp {

// Overwrites memory that has a secret. The compiler must not remove this.
void wipeMemory(void* memory, std::size_t size) noexcept;

// Wipes the characters of a text at the end of the scope, before their memory is released.
template <typename Text>
class WipeAtExit {
 public:
  explicit WipeAtExit(Text& text) : m_text(text) {}
  ~WipeAtExit() { wipeMemory(m_text.data(), m_text.size() * sizeof(typename Text::value_type)); }
  WipeAtExit(const WipeAtExit&) = delete;
  WipeAtExit& operator=(const WipeAtExit&) = delete;

 private:
  Text& m_text;
};

}  // namespace sitehlp

#endif
