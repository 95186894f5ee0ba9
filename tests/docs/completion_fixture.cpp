#include "tests/docs/completion_fixture.h"

#include <filesystem>
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

std::vector<std::pair<std::string, std::string>> CompletionTest::setSpecialNames() {
  setOwnList(document(httpSite("Main depot") + httpSite("a:b c") + httpSite("x@y z") +
                      httpSite("k=v w") + httpSite("!bang") + httpSite("back\\slash") +
                      httpSite("semi;colon") + httpSite("star*") + httpSite("%percent %n") +
                      httpSite("#hash") + httpSite("~home") + httpSite("&amp;amp") +
                      httpSite("[br]") + httpSite("`touch hacked`") + httpSite("ends.") +
                      httpSite("C&#9;D") + httpSite("C&#10;touch hacked")));
  return {{"M'ai", "Main depot"},
          {"M\"ai", "Main depot"},
          {"a", "a:b c"},
          {"a:", "a:b c"},
          {"a:b\\ ", "a:b c"},
          {"x", "x@y z"},
          {"x@", "x@y z"},
          {"x@y", "x@y z"},
          {"k", "k=v w"},
          {"k=", "k=v w"},
          {"\\!", "!bang"},
          {"back", "back\\slash"},
          {"semi", "semi;colon"},
          {"star", "star*"},
          {"%", "%percent %n"},
          {"\\#", "#hash"},
          {"\\~", "~home"},
          {"'~", "~home"},
          {"\\&", "&amp"},
          {"\\[", "[br]"},
          {"'`", "`touch hacked`"},
          {"end", "ends."},
          {"C", "C"}};
}

void CompletionTest::makeOtherTool() {
  const std::string path = write("sitelist", "#!/bin/sh\nprintf 'other\\n:nothing\\n'\n");
  std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

}  // namespace test
