#include "tools/sitelist/commands/program.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "host/agent.h"
#include "tools/sitelist/cli/exit_status.h"
#include "tools/sitelist/commands/command.h"

namespace tool {
namespace {

std::string defaultAgentDirectory() { return host::AgentSettings().dataDirectory; }

std::string usualAgentDirectory() {
  const char* const set = std::getenv("SITELIST_AGENT_DIR");
  return set && *set ? set : defaultAgentDirectory();
}

struct CommandEntry {
  const char* name;
  void (*add)(Command& app, Context& context);
};

constexpr CommandEntry c_commands[] = {
    {"init", addInit},
    {"show", addShow},
    {"get", addGet},
    {"explain", addExplain},
    {"probe", addProbe},
    {"diff", addDiff},
    {"versions", addVersions},
    {"servers", addServers},
    {"certs", addCerts},
    {"policies", addPolicies},
    {"doctor", addDoctor},
    {"validate", addValidate},
    {"summary", addSummary},
    {"explain-rule", addExplainRule},
    {"import", addImport},
    {"install", addInstall},
    {"merge", addMerge},
    {"rewrite", addRewrite},
    {"edit", addEdit},
    {"history", addHistory},
    {"undo", addUndo},
    {"modify", addModify},
    {"derive-server-list", addDeriveServerList},
    {"from-buffer", addFromBuffer},
    {"server-list", addServerList},
    {"protect", addProtect},
    {"help", addHelp},
};

void add(const CommandEntry& entry, Command& app, Context& context) {
  entry.add(app, context);
  if (!app.has_subcommand(entry.name)) throw std::logic_error("a command has another name");
}

// The options of all commands.
std::unique_ptr<CommandLine> makeProgram(Context& context) {
  auto line =
      std::make_unique<CommandLine>("Manages the site list of an endpoint agent.", "sitelist");
  Command app = line->program();
  context.agentDirectory = usualAgentDirectory();
  app.add_option("--agent-dir", context.agentDirectory,
                 "Data directory of the agent (default: the value of\nSITELIST_AGENT_DIR, or " +
                     defaultAgentDirectory() + " without it)")
      .type_name("DIR");
  app.add_option("--format", context.format,
                 "Output format: table (the default), json, jsonl, csv or\nxml; jsonl is one JSON "
                 "object in each line")
      .type_name("FORMAT")
      .choices({"table", "json", "jsonl", "csv", "xml"});
  app.add_flag("--json", context.json, "The same as --format json");
  app.add_option("--color", context.color,
                 "Colour in tables: auto (the default), always or never;\nauto uses no colour if "
                 "NO_COLOR is set")
      .type_name("WHEN")
      .choices({"auto", "always", "never"});
  app.add_option("--wait", context.wait,
                 "Longest wait for the lock of a list (default: 10; 60 for\nthe check of `doctor`)")
      .type_name("SECONDS");
  app.add_flag("-q,--quiet", context.quiet,
               "Print only errors: no messages, no warnings, and no\ntable");
  app.add_flag("--verbose", context.verbose, "Print the detail log on standard error");
  line->version("sitelist " SITELIST_VERSION);
  app.footer(
      std::string("`sitelist COMMAND --help` describes a command, with examples.\n"
                  "\n"
                  "A file that is read may be -, which means standard input, or a pipe. ./- is a\n"
                  "file with the name -. Standard input can be read only once.\n\n") +
      c_exitStatusHelp);
  return line;
}

}  // namespace

std::vector<std::string> commandNames() {
  std::vector<std::string> names;
  for (const CommandEntry& entry : c_commands) names.emplace_back(entry.name);
  return names;
}

std::unique_ptr<CommandLine> makeCommandLine(Context& context) {
  auto line = makeProgram(context);
  Command app = line->program();
  for (const CommandEntry& entry : c_commands) add(entry, app, context);
  return line;
}

std::unique_ptr<CommandLine> makeCommandLineFor(const std::vector<std::string>& words,
                                                Context& context) {
  auto line = makeProgram(context);
  Command app = line->program();
  for (const CommandEntry& entry : c_commands) {
    if (std::find(words.begin(), words.end(), entry.name) != words.end()) add(entry, app, context);
  }
  return line;
}

}  // namespace tool
