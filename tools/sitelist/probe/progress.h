#ifndef TOOLS_SITELIST_PROBE_PROGRESS_H
#define TOOLS_SITELIST_PROBE_PROGRESS_H

#include <cstddef>

namespace tool {

// A line on standard error that counts the sites, for example "3 of 12 sites". It is printed only
// on a terminal. The destructor removes it. A signal that ends the process removes it too.
class Progress {
 public:
  // Prints nothing if `isWanted` is false.
  Progress(bool isWanted, std::size_t total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void show(std::size_t done) const;

 private:
  bool m_isShown;
  std::size_t m_total;
};

}  // namespace tool

#endif
