#ifndef TESTS_CLI_CLI_FIXTURE_H
#define TESTS_CLI_CLI_FIXTURE_H

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/support/test_agent.h"

namespace test {

struct Output {
  int status = -1;  // 128 + the number of the signal that ended the tool
  std::string out;
  std::string err;
};

// Runs the built tool as a process, in a temporary directory. The directory has the data directory
// of an agent ("agent", not created yet), the documents of the test, and the temporary files of the
// tool.
class CliTest : public testing::Test {
 protected:
  CliTest();
  // Fails the test when the tool has left temporary files.
  ~CliTest() override;

  // Runs the tool for "agent". `input` is its standard input, for example a clear password.
  Output sitelist(const std::vector<std::string>& arguments, const std::string& input = "");
  // Runs the tool without --agent-dir.
  Output bare(const std::vector<std::string>& arguments);
  // Runs the tool on a terminal of this width. The environment has these settings ("TERM=dumb") and
  // no others about colour. Output::out has the text on the terminal.
  Output onTerminal(int columns, const std::vector<std::string>& arguments,
                    const std::vector<std::string>& settings = {});
  // Runs the tool with standard error on a terminal. Calls `then` when the text was printed or the
  // tool has ended. Output::err has the text on the terminal.
  Output withTerminalForMessages(const std::vector<std::string>& arguments, const std::string& text,
                                 const std::function<void()>& then);
  // Runs a shell script with the tool as "$0" and the arguments as "$@".
  Output shell(const std::string& script, const std::vector<std::string>& arguments = {});

  void initAgent(const std::vector<std::string>& options = {});
  // Stores the document as the agent's own list, without the tool.
  void setOwnList(const std::string& document);
  std::string ownList() const { return file("agent/etc/SiteList.xml"); }
  // Encrypts a password with the password key. Returns the text for a list.
  std::string protectedText(const std::string& clear);

  std::string file(const std::string& name) const { return m_dir.file(name); }
  // Writes a document of the test and returns its path.
  std::string write(const std::string& name, const std::string& text);
  std::map<std::string, std::string> agentFiles() const { return snapshot(file("agent")); }

 private:
  Output run(const std::string& program, const std::vector<std::string>& arguments,
             const std::string& input);

  TempDir m_dir;
};

}  // namespace test

#endif
