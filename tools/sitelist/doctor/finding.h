#ifndef TOOLS_SITELIST_DOCTOR_FINDING_H
#define TOOLS_SITELIST_DOCTOR_FINDING_H

#include <functional>
#include <string>
#include <vector>

namespace tool {

enum class State { Ok, Warning, Failure };

// Returns "ok", "warning" or "failure".
const char* nameOf(State state);

// One result of a check. All texts are printable.
struct Finding {
  State state = State::Ok;
  std::string text;
  std::string next = {};  // what to do; empty if there is nothing to do
  std::string file = {};  // the path of the file or directory, if there is one
  // Mends the fault. Returns an empty text, or why the fault was not mended. Empty if it is not
  // safe.
  std::function<std::string()> mend = {};
  std::string mended = {};  // what mend has done
  bool isLast = false;      // must be mended after all others, because it releases the locks
};

// Returns the text of an errno, or an empty text for 0.
std::string textOfError(int error);

// The results of one check.
class Findings {
 public:
  void ok(const std::string& text) { m_all.push_back({State::Ok, text}); }
  void warn(const std::string& text, const std::string& next, const std::string& file = "") {
    m_all.push_back({State::Warning, text, next, file});
  }
  void fail(const std::string& text, const std::string& next, const std::string& file = "") {
    m_all.push_back({State::Failure, text, next, file});
  }
  void add(Finding finding) { m_all.push_back(std::move(finding)); }
  // Adds a result without a fault if there is no other result.
  void okIfNone(const std::string& text) {
    if (m_all.empty()) ok(text);
  }
  const std::vector<Finding>& all() const { return m_all; }

 private:
  std::vector<Finding> m_all;
};

}  // namespace tool

#endif
