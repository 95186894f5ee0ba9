#ifndef TESTS_LINKS_OUTSIDE_H
#define TESTS_LINKS_OUTSIDE_H

#include <map>
#include <string>

#include "tests/support/test_agent.h"

namespace test {

// A directory outside the agent's, of the user who runs the test, which nothing may change.
class Outside {
 public:
  // Puts a file there that anybody may read, and a directory that holds the same as `likeThis`; one
  // with a file in it when there is no such directory.
  void prepare(const std::string& bytes, const std::string& likeThis);

  std::string file() const { return m_dir.file("file"); }
  std::string directory() const { return m_dir.file("directory"); }
  std::string missing() const { return m_dir.file("missing"); }

  // Every file and directory, this one included, with all that could change: bytes, kind, mode,
  // owner, group and times. The time of the last change of `file` counts only when asked for: it
  // also changes when a second name of it goes.
  std::map<std::string, std::string> state(bool withChangeOfFile) const;

 private:
  TempDir m_dir;
};

// The first difference; empty when there is none.
std::string difference(const std::map<std::string, std::string>& before,
                       const std::map<std::string, std::string>& after);

}  // namespace test

#endif
