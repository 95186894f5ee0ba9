#ifndef TESTS_CLI_CLI_FIXTURE_H
#define TESTS_CLI_CLI_FIXTURE_H

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/support/test_agent.h"

namespace test {

struct Output {
  int status = -1;  // 128 + the signal's number when one ended it
  std::string out;
  std::string err;
};

// Runs the built tool as a process, in a temporary directory that holds an agent's data directory
// ("agent", not made yet), the documents of the test and the tool's own temporary files.
class CliTest : public testing::Test {
 protected:
  CliTest();
  // Fails the test when the tool left temporary files behind.
  ~CliTest() override;

  // Serves "agent"; the clear text of a password goes in through `input`.
  Output sitelist(const std::vector<std::string>& arguments, const std::string& input = "");
  // Without --agent-dir in front.
  Output bare(const std::vector<std::string>& arguments);
  // On a terminal of this width, with these settings ("TERM=dumb") in an environment that has none
  // about colour. Output::out is what the terminal gets.
  Output onTerminal(int columns, const std::vector<std::string>& arguments,
                    const std::vector<std::string>& settings = {});
  // With standard error on a terminal. Calls `then` once the text is there, or the tool has ended.
  // Output::err is what the terminal gets.
  Output withTerminalForMessages(const std::vector<std::string>& arguments, const std::string& text,
                                 const std::function<void()>& then);
  // A shell script with the tool as "$0" and the arguments as "$@".
  Output shell(const std::string& script, const std::vector<std::string>& arguments = {});

  void initAgent(const std::vector<std::string>& options = {});
  // Makes the document the agent's own without asking the tool.
  void setOwnList(const std::string& document);
  std::string ownList() const { return file("agent/etc/SiteList.xml"); }
  // The protected form of a password, by the agent's key.
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
