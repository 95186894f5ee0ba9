#include <gmock/gmock.h>

#include <cstdio>

#include "tests/resilience/workshop.h"

#ifdef SITELIST_TOOL

namespace {

using namespace test;
using testing::HasSubstr;
using testing::Not;

// What the tool prints, on both outputs, with its detail log on.
std::string output(const Workshop& workshop, const std::string& arguments) {
  const std::string command = std::string("'") + SITELIST_TOOL + "' --verbose --agent-dir '" +
                              workshop.agent.dataDirectory() + "' " + arguments + " 2>&1";
  std::string text;
  FILE* const pipe = ::popen(command.c_str(), "r");
  if (!pipe) return text;
  char buffer[4096];
  for (std::size_t n = 0; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
    text.append(buffer, n);
  }
  ::pclose(pipe);
  return text;
}

TEST(TheTool, PrintsNoPasswordUnlessItIsAskedTo) {
  Workshop workshop;
  writeFile(workshop.agent.dataDirectory() + "/agent.toml", "managed = false\n");
  ASSERT_THAT(output(workshop, "show --json --show-secrets"), HasSubstr(c_canary))
      << "the search must find a password that is printed";
  const std::string in = "'" + workshop.incoming() + "'";
  const std::string directory = "'" + workshop.etcDirectory() + "'";
  for (const std::string& arguments :
       {std::string("show"),
        std::string("show --json"),
        "show " + in,
        "show --json " + in,
        "validate " + in,
        std::string("versions"),
        std::string("certs"),
        std::string("policies"),
        std::string("servers --all"),
        "import --dry-run " + in,
        "import " + in,
        "install " + in,
        "modify --repositories --servers --dry-run " + in,
        "modify --repositories --servers " + in,
        "merge --first " + in + " --output '" + workshop.scratchList() + "'",
        "rewrite " + in + " '" + workshop.scratchList() + "'",
        "derive-server-list " + directory,
        "server-list " + in,
        "server-list --adjust-passwords " + in,
        std::string("policies set Name Value"),
        std::string("show /nowhere")}) {
    const std::string text = output(workshop, arguments);
    EXPECT_THAT(text, Not(HasSubstr(c_canary))) << arguments;
    EXPECT_FALSE(text.empty()) << arguments;
  }
  EXPECT_THAT(output(workshop, "show --json --show-secrets"), HasSubstr(c_canary))
      << "the commands must not remove the password from the list";
}

}  // namespace

#endif
