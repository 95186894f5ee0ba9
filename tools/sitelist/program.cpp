#include "tools/sitelist/program.h"

#include "tools/sitelist/command.h"
#include "tools/sitelist/exit_status.h"

namespace tool {
namespace {

constexpr const char* c_defaultAgentDirectory = "/Library/Korvel/orb";

void addCommands(Command& app, Context& context) {
  addInit(app, context);
  addShow(app, context);
  addGet(app, context);
  addExplain(app, context);
  addDiff(app, context);
  addVersions(app, context);
  addServers(app, context);
  addCerts(app, context);
  addPolicies(app, context);
  addValidate(app, context);
  addExplainRule(app, context);
  addImport(app, context);
  addInstall(app, context);
  addMerge(app, context);
  addRewrite(app, context);
  addEdit(app, context);
  addModify(app, context);
  addDeriveServerList(app, context);
  addFromBuffer(app, context);
  addServerList(app, context);
  addProtect(app, context);
}

}  // namespace

std::unique_ptr<CommandLine> makeCommandLine(Context& context) {
  auto line =
      std::make_unique<CommandLine>("Looks after the site list of an endpoint agent.", "sitelist");
  Command app = line->program();
  context.agentDirectory = c_defaultAgentDirectory;
  app.add_option("--agent-dir", context.agentDirectory,
                 "Data directory of the agent to serve\n(default: /Library/Korvel/orb)")
      .type_name("DIR");
  app.add_option("--format", context.format,
                 "Form of the output: table (the default), json, csv or xml")
      .type_name("FORM")
      .choices({"table", "json", "csv", "xml"});
  app.add_flag("--json", context.json, "The same as --format json");
  app.add_option("--color", context.color,
                 "Colour in tables: auto (the default), always or never;\nauto heeds NO_COLOR")
      .type_name("WHEN")
      .choices({"auto", "always", "never"});
  app.add_flag("--verbose", context.verbose, "Print the detail log on standard error");
  line->version("sitelist " SITELIST_VERSION);
  app.footer(std::string("`sitelist COMMAND --help` tells more of a command, with examples.\n\n") +
             c_exitStatusHelp);
  addCommands(app, context);
  return line;
}

}  // namespace tool
