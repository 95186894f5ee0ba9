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
// Those of the words that are long options, without a description behind a tabulator.
std::set<std::string> longOptions(const Words& words);

// A directory with documents to complete, and an agent whose sites have names that a shell has to
// be careful with.
class CompletionTest : public CliTest {
 protected:
  CompletionTest();

  // Shell commands that make the tool the one that is built.
  static std::string tool();

  // Gives the agent sites with special characters in their names. Returns pairs of a typed prefix
  // and the only name that it may become.
  std::vector<std::pair<std::string, std::string>> setSpecialNames();
  // Puts a program "sitelist" into the directory that offers one word, "other".
  void makeOtherTool();
};

// A shell on a terminal, where what it makes of a line can be seen.
class ShellSession {
 public:
  ShellSession(const Words& commandLine, const std::string& directory, const std::string& setup)
      : m_terminal(commandLine, directory) {
    run("words() { printf '[%s]' \"$@\"; echo ' words'-end; }; PS1='go''> '; " + setup + "; words");
  }

  // The words of the line, each in brackets, after the tabulator was pressed behind it.
  std::string completed(const std::string& line) {
    const std::string printed = run(line + "\t\x01words ");
    return printed.substr(printed.rfind("\n[") + 1);
  }

  // What is listed when the tabulator is pressed behind the line.
  std::string listed(const std::string& line) { return run(line + "\t\x15words"); }

 private:
  // Returns what is printed. Waits until the shell takes keys again: what is typed before goes to
  // the terminal, which knows nothing of the tabulator. Neither mark is ever typed in one piece.
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
