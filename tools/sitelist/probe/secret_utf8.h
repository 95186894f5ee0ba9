#ifndef TOOLS_SITELIST_PROBE_SECRET_UTF8_H
#define TOOLS_SITELIST_PROBE_SECRET_UTF8_H

#include <vector>

namespace tool {

// The UTF-8 form of a user or password. The destructor wipes it.
class SecretUtf8 {
 public:
  explicit SecretUtf8(const wchar_t* text);
  ~SecretUtf8();
  SecretUtf8(const SecretUtf8&) = delete;
  SecretUtf8& operator=(const SecretUtf8&) = delete;

  const char* c_str() const { return m_bytes.data(); }

 private:
  std::vector<char> m_bytes;  // never grows, because growing would not wipe the old memory
};

}  // namespace tool

#endif
