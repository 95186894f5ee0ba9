#ifndef TESTS_DOCS_COMPLETION_FIXTURE_H
#define TESTS_DOCS_COMPLETION_FIXTURE_H

#include <set>
#include <utility>

#include "tests/cli/cli_fixture.h"
#include "tests/docs/terminal.h"

namespace test {

using Words = std::vector<std::string>;

const std::string c_scripts = std::string(TEST_SOURCE_DIR) + "/tools/sitelist/completion/";

Words splitLines(const std::string& text);
// Returns the long options among the words, without the description after a tab.
std::set<std::string> longOptions(const Words& words);

// A directory with documents to complete, and an agent whose sites have names with characters that
// are special in a shell.
class CompletionTest : public CliTest {
 protected:
  CompletionTest();

  // Returns shell commands that make the built tool available.
  static std::string tool();

  // Gives the agent sites with special characters in their names. Returns pairs of a typed prefix
  // and its only completion.
  std::vector<std::pair<std::string, std::string>> setSpecialNames();
  // Creates a program "sitelist" in the directory that offers one word, "other".
  void makeOtherTool();
};

// A shell on a terminal. It shows how the shell changes a line.
class ShellSession {
 public:
  ShellSession(const Words& commandLine, const std::string& directory, const std::string& setup)
      : m_terminal(commandLine, directory) {
    run("words() { printf '[%s]' \"$@\"; echo ' words'-end; }; PS1='go''> '; " + setup + "; words");
  }

  // Returns the words of the line after pressing the tab key at its end, each in brackets.
  std::string completed(const std::string& line) {
    const std::string printed = run(line + "\t\x01words ");
    return printed.substr(printed.rfind("\n[") + 1);
  }

  // Returns the list that is shown after pressing the tab key at the end of the line.
  std::string listed(const std::string& line) { return run(line + "\t\x15words"); }

 private:
  // Returns the printed text. Waits until the shell reads keys again, because the terminal does not
  // complete keys that are typed before. The typed commands contain each end mark only in two
  // pieces, so the echo of the keys is not taken for it.
  std::string run(const std::string& keys) {
    m_terminal.type(keys + '\n');
    const std::string printed = m_terminal.readUntil(" words-end");
    m_terminal.readUntil("go> ");
    return printed;
  }

  Terminal m_terminal;
};

}  // namespace test

#endif
