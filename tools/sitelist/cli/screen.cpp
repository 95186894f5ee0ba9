#include "tools/sitelist/cli/screen.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace tool {
namespace {

const char* codeOf(Style style) {
  switch (style) {
    case Style::Heading:
      return "1";
    case Style::Dim:
      return "2";
    case Style::Good:
      return "32";
    case Style::Bad:
      return "31";
    case Style::Changed:
      return "35";
    case Style::Plain:
      break;
  }
  return "";
}

std::size_t terminalColumns() {
  winsize size = {};
  return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool wantsColor() {
  const char* const without = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  return !(without && *without) && !(terminal && std::strcmp(terminal, "dumb") == 0);
}

}  // namespace

std::string Screen::styled(Style style, const std::string& text) const {
  if (!color || style == Style::Plain || text.empty()) return text;
  return std::string("\033[") + codeOf(style) + "m" + text + "\033[0m";
}

bool isOutputTerminal() {
  static const bool isTerminal = ::isatty(STDOUT_FILENO) == 1;
  return isTerminal;
}

Screen standardOutput(ColorChoice choice) {
  const bool isTerminal = isOutputTerminal();
  Screen screen;
  screen.isTerminal = isTerminal;
  if (isTerminal) screen.columns = terminalColumns();
  screen.color =
      choice == ColorChoice::Always || (choice == ColorChoice::Auto && isTerminal && wantsColor());
  return screen;
}

}  // namespace tool
