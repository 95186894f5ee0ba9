#ifndef TESTS_LINKS_OUTSIDE_H
#define TESTS_LINKS_OUTSIDE_H

#include <map>
#include <string>

#include "tests/support/test_agent.h"

namespace test {

// A directory outside of the agent's data directory. It belongs to the user who runs the test.
// Nothing may change it.
class Outside {
 public:
  // Creates a file that everybody may read, and a directory with the content of `likeThis`. If
  // `likeThis` does not exist, the directory has one file.
  void prepare(const std::string& bytes, const std::string& likeThis);

  std::string file() const { return m_dir.file("file"); }
  std::string directory() const { return m_dir.file("directory"); }
  std::string missing() const { return m_dir.file("missing"); }

  // Returns every file and directory, including this one, with everything that can change. This is
  // the content, kind, mode, owner, group and times. The change time of `file` is included only on
  // request, because removing a second name also changes it.
  std::map<std::string, std::string> state(bool withChangeOfFile) const;

 private:
  TempDir m_dir;
};

// Returns the first difference, or an empty text.
std::string difference(const std::map<std::string, std::string>& before,
                       const std::map<std::string, std::string>& after);

}  // namespace test

#endif
