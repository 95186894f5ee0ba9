#ifndef TESTS_RESILIENCE_EXPERIMENT_H
#define TESTS_RESILIENCE_EXPERIMENT_H

#include <functional>
#include <string>
#include <vector>

namespace test {

// Told now and then how far a long experiment has come.
using Progress = std::function<void(unsigned long done)>;

// What went wrong, one line each; only the first ones are kept.
class Faults {
 public:
  void add(const std::string& where, const std::string& what) {
    ++m_count;
    if (m_lines.size() < c_kept) m_lines.push_back(where + ": " + what);
  }
  // For a description that is empty when all is well.
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
