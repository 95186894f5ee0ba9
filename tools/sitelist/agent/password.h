#ifndef TOOLS_SITELIST_AGENT_PASSWORD_H
#define TOOLS_SITELIST_AGENT_PASSWORD_H

#include <array>
#include <string>

#include "sitehlp/site.h"
#include "tools/sitelist/report/context.h"

namespace tool {

// A clear password that fits into a site list. Its memory is wiped.
class Password {
 public:
  Password() = default;
  ~Password();
  Password(const Password&) = delete;
  Password& operator=(const Password&) = delete;

  // Reads the first line of a file or, for "-" or an empty name, of standard input. A terminal does
  // not show the typed text. Fails when the line cannot be read, is not valid UTF-8, or is too
  // long.
  void read(const std::string& file);

  const std::wstring& text() const { return m_text; }

 private:
  static constexpr std::size_t c_maxCharacters = sitehlp::c_textCapacity - 1;

  void readLine(int descriptor, const std::string& source);
  void convert(const std::string& source);

  std::array<char, 4 * c_maxCharacters + 4> m_bytes = {};
  std::size_t m_size = 0;
  std::wstring m_text;
};

// Returns the password, encrypted with the password key of the current agent. Fails without the
// key.
std::wstring protect(const Context& context, const Password& password);

}  // namespace tool

#endif
