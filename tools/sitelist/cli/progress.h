#ifndef TOOLS_SITELIST_CLI_PROGRESS_H
#define TOOLS_SITELIST_CLI_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>

namespace tool {

// A line on standard error that counts what is done, for example "3 of 12 sites". It is printed
// only on a terminal, at most ten times a second. The destructor removes it. A signal that ends the
// process removes it too. There must be only one object at a time.
class Progress {
 public:
  // `noun` says what is counted. Prints nothing if `isWanted` is false.
  Progress(bool isWanted, std::size_t total, std::string noun);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void show(std::size_t done);

 private:
  using Clock = std::chrono::steady_clock;

  bool m_isShown;
  std::size_t m_total;
  std::string m_noun;
  Clock::time_point m_next;  // nothing is printed before
};

}  // namespace tool

#endif
