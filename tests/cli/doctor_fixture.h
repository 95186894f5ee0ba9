#ifndef TESTS_CLI_DOCTOR_FIXTURE_H
#define TESTS_CLI_DOCTOR_FIXTURE_H

#include "tests/cli/edit_fixture.h"
#include "tests/cli/json_report.h"

namespace test {

// Runs `sitelist doctor` on a managed agent without any fault.
class CliDoctor : public CliTest {
 protected:
  CliDoctor();

  // The list of the agent. `sites` comes after the management server.
  std::string list(const std::string& sites = "", const std::string& beforeSites = "");
  // Stores the same list as the agent's own list and as the mesh copy.
  void setBothLists(const std::string& document);
  // Gives a file of the agent other bytes, and keeps its mode.
  void setBytes(const std::string& path, const std::string& bytes);
  std::string meshCopy() const { return file("agent/mesh/SiteList.xml"); }

  // Runs the command and returns its report. It must end with this status.
  JsonReport doctor(int status, const Arguments& arguments = {});
  // Returns the results of one check.
  std::vector<JsonReport::Record> resultsOf(const JsonReport& report, const std::string& check);

  // Expects that the check has exactly this fault and that it is the only fault at all. The texts
  // must be in the result and in its advice.
  void expectOnly(const std::string& check, const std::string& state, const std::string& text,
                  const std::string& next);
  // Expects that --fix mends the only fault, with this text, and that a second --fix changes
  // nothing.
  void expectMended(const std::string& check, const std::string& text);
  void expectHealthy();

  // Returns the bytes, mode, owner and times of every file and directory of the agent.
  std::map<std::string, std::string> states() const;
};

}  // namespace test

#endif
