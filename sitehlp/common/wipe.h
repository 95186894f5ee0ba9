#ifndef SITEHLP_COMMON_WIPE_H
#define SITEHLP_COMMON_WIPE_H

#include <cstddef>

namespace sitehlp {

// Overwrites memory that held a secret in a way that the compiler does not remove.
void wipeMemory(void* memory, std::size_t size) noexcept;

// Wipes the characters of a text before its memory is given back, whatever ends the scope.
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
