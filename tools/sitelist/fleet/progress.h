#ifndef TOOLS_SITELIST_FLEET_PROGRESS_H
#define TOOLS_SITELIST_FLEET_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>

#include "tools/sitelist/report/context.h"

namespace tool {

// Returns a number with commas, for example "5,000".
std::string withCommas(std::size_t number);

// A line on standard error that says how many lists are read. It appears only if standard error is
// a terminal and nothing else is printed there meanwhile.
class Progress {
 public:
  // `noun` says what is counted, for example "lists".
  Progress(const Context& context, std::size_t count, const char* noun, bool printsRows);
  // Removes the line.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void show(std::size_t done);

 private:
  using Clock = std::chrono::steady_clock;

  std::size_t m_count;
  const char* m_noun;
  bool m_isShown;
  std::size_t m_width = 0;
  Clock::time_point m_next = Clock::now();
};

}  // namespace tool

#endif
