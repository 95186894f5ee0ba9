#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>

#include "tools/sitelist/command.h"
#include "tools/sitelist/failure.h"
#include "tools/sitelist/log_record.h"
#include "tools/sitelist/text.h"

namespace tool {
namespace {

constexpr const char* c_defaultAgentDirectory = "/Library/Korvel/orb";

// The command behind --mesh-command may have options of its own, so it is taken off before the
// command line is looked at.
std::vector<std::string> takeMeshCommand(std::vector<std::string>& arguments) {
  const auto option = std::find(arguments.begin(), arguments.end(), "--mesh-command");
  if (option == arguments.end()) return {};
  std::vector<std::string> command(option + 1, arguments.end());
  arguments.erase(option + 1, arguments.end());
  return command;
}

std::string fullPath(const std::string& directory) {
  std::string path = std::filesystem::absolute(directory).lexically_normal().string();
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

void addCommands(Command& app, Context& context) {
  addInit(app, context);
  addShow(app, context);
  addVersions(app, context);
  addServers(app, context);
  addCerts(app, context);
  addPolicies(app, context);
  addValidate(app, context);
  addImport(app, context);
  addInstall(app, context);
  addMerge(app, context);
  addRewrite(app, context);
  addModify(app, context);
  addDeriveServerList(app, context);
  addFromBuffer(app, context);
  addServerList(app, context);
  addProtect(app, context);
}

int perform(const Context& context) {
  recordLog(context.verbose);
  try {
    const int status = context.action();
    reportLoggedErrors(true);
    return status;
  } catch (const Failure& failure) {
    std::cout.flush();
    reportLoggedErrors(false);
    std::cerr << "sitelist: " << failure.what() << '\n';
    return failure.status();
  }
}

int run(std::vector<std::string> arguments) {
  CommandLine line("Looks after the site list of an endpoint agent.", "sitelist");
  Command app = line.program();
  Context context;
  context.agentDirectory = c_defaultAgentDirectory;
  app.add_option("--agent-dir", context.agentDirectory,
                 "Data directory of the agent to serve\n(default: /Library/Korvel/orb)")
      .type_name("DIR");
  app.add_flag("--verbose", context.verbose, "Print the detail log on standard error");
  line.version("sitelist " SITELIST_VERSION);
  app.footer(std::string("`sitelist COMMAND --help` tells more of a command, with examples.\n\n") +
             c_exitStatusHelp);
  addCommands(app, context);

  context.meshCommand = takeMeshCommand(arguments);
  std::string error;
  switch (line.parse(std::move(arguments), error)) {
    case CommandLine::Outcome::Answered:
      return exitSuccess;
    case CommandLine::Outcome::Wrong:
      std::cerr << "sitelist: " << shown(error)
                << "\n  next: see `sitelist --help`, or --help behind a command\n";
      return exitUsage;
    case CommandLine::Outcome::Parsed:
      break;
  }
  if (!context.action) {
    std::cerr << line.help();
    return exitUsage;
  }
  context.agentDirectory = fullPath(context.agentDirectory);
  return perform(context);
}

}  // namespace
}  // namespace tool

int main(int argc, char** argv) {
  int status = tool::exitInternal;
  try {
    status = tool::run(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const std::bad_alloc&) {
    std::cerr << "sitelist: out of memory\n";
  } catch (const std::exception& e) {
    std::cerr << "sitelist: internal error: " << tool::shown(std::string(e.what())) << '\n';
  }
  std::cout.flush();
  if (!std::cout && status == tool::exitSuccess) {
    std::cerr << "sitelist: standard output cannot be written\n";
    status = tool::exitFile;
  }
  return status;
}
