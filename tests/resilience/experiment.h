#ifndef TESTS_RESILIENCE_EXPERIMENT_H
#define TESTS_RESILIENCE_EXPERIMENT_H

#include <functional>
#include <string>
#include <vector>

namespace test {

// Called from time to time with the progress of a long experiment.
using Progress = std::function<void(unsigned long done)>;

// The faults of an experiment, one line each. Only the first lines are kept.
class Faults {
 public:
  void add(const std::string& where, const std::string& what) {
    ++m_count;
    if (m_lines.size() < c_kept) m_lines.push_back(where + ": " + what);
  }
  // Adds a fault unless its description is empty.
  void addIfAny(const std::string& where, const std::string& what) {
    if (!what.empty()) add(where, what);
  }
  unsigned long count() const { return m_count; }
  const std::vector<std::string>& lines() const { return m_lines; }

 private:
  static constexpr std::size_t c_kept = 20;
  unsigned long m_count = 0;
  std::vector<std::string> m_lines;
};

}  // namespace test

#endif
