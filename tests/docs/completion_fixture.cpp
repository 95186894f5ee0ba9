#include "tests/docs/completion_fixture.h"

#include <sstream>

#include "tests/cli/documents.h"

namespace test {

Words splitLines(const std::string& text) {
  Words lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::set<std::string> longOptions(const Words& words) {
  std::set<std::string> options;
  for (const std::string& word : words) {
    if (word.rfind("--", 0) == 0) options.insert(word.substr(0, word.find('\t')));
  }
  return options;
}

CompletionTest::CompletionTest() {
  write("incoming list.xml", document(httpSite("depot")));
  write("lists/other.xml", document(httpSite("depot")));
  initAgent();
  setOwnList(document(httpSite("Main depot") + httpSite("$(touch hacked)") +
                      httpSite("it's \\ &quot;so&quot;") + httpSite("東京支社")));
}

std::string CompletionTest::tool() {
  const std::string path = SITELIST_TOOL;
  return "PATH='" + path.substr(0, path.rfind('/')) + "':$PATH";
}

}  // namespace test
