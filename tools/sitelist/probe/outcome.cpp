#include "tools/sitelist/probe/outcome.h"

#include "tools/sitelist/cli/text.h"

namespace tool {

const char* nameOf(ProbeState state) {
  switch (state) {
    case ProbeState::Ok:
      return "ok";
    case ProbeState::Failed:
      return "failed";
    case ProbeState::NotTried:
      break;
  }
  return "not-tried";
}

std::string limitedText(const std::string& text) {
  constexpr std::size_t c_most = 256;
  const std::size_t end = text.find_last_not_of("\r\n \t");
  std::string limited = text.substr(0, end == std::string::npos ? 0 : end + 1);
  const bool isCut = limited.size() > c_most;
  if (isCut) {
    limited.resize(c_most - 3);
    // A character is not cut in two.
    std::size_t last = limited.size();
    while (last > 0 && (static_cast<unsigned char>(limited[last - 1]) & 0xC0U) == 0x80) --last;
    if (last > 0 && static_cast<unsigned char>(limited[last - 1]) >= 0xC0) limited.resize(last - 1);
  }
  // A zero byte ends a wide text.
  limited = limited.substr(0, limited.find('\0'));
  return narrow(wide(limited)) + (isCut ? "..." : "");
}

}  // namespace tool
