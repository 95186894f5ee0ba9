#include "tools/sitelist/fleet/progress.h"

#include <unistd.h>

#include <iostream>

#include "tools/sitelist/cli/screen.h"

namespace tool {
namespace {

constexpr std::chrono::milliseconds c_pause{100};

}  // namespace

std::string withCommas(std::size_t number) {
  std::string text = std::to_string(number);
  for (std::size_t at = text.size(); at > 3;) text.insert(at -= 3, ",");
  return text;
}

Progress::Progress(const Context& context, std::size_t count, const char* noun, bool printsRows)
    : m_count(count),
      m_noun(noun),
      m_isShown(!context.quiet && !context.verbose && ::isatty(STDERR_FILENO) == 1 &&
                !(printsRows && isOutputTerminal())) {}

Progress::~Progress() {
  if (m_width != 0) std::cerr << '\r' << std::string(m_width, ' ') << '\r' << std::flush;
}

void Progress::show(std::size_t done) {
  if (!m_isShown || Clock::now() < m_next) return;
  m_next = Clock::now() + c_pause;
  const std::string line = withCommas(done) + " of " + withCommas(m_count) + " " + m_noun;
  m_width = line.size();
  std::cerr << '\r' << line << std::flush;
}

}  // namespace tool
