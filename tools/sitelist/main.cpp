#include <openssl/crypto.h>

#include <algorithm>
#include <exception>
#include <iostream>
#include <new>
#include <string_view>

#include "host/agent.h"
#include "sitehlp/result_codes.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/list_lock.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/full_path.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/complete.h"
#include "tools/sitelist/commands/program.h"
#include "tools/sitelist/report/report.h"

namespace tool {
namespace {

constexpr const char* c_defaultWait = "10";

// `command` is empty if it is not known.
std::string seeHelp(const std::string& command) {
  return "see `sitelist" + (command.empty() ? "" : " " + command) + " --help`";
}

// The program after --mesh-command may have its own options, so its words are removed before the
// command line is parsed.
std::vector<std::string> takeMeshCommand(std::vector<std::string>& arguments) {
  const auto option = std::find(arguments.begin(), arguments.end(), "--mesh-command");
  if (option == arguments.end()) return {};
  std::vector<std::string> command(option + 1, arguments.end());
  arguments.erase(option + 1, arguments.end());
  return command;
}

// Returns the full path. Fails if it is too long for an agent.
std::string usableDirectory(const std::string& directory) {
  if (directory.empty()) {
    throw Failure(exitUsage, "--agent-dir: the value is empty", "name a directory");
  }
  refuseStandardStream(directory, "--agent-dir");
  std::string path = fullPath(directory);
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  host::AgentSettings settings;
  settings.dataDirectory = path;
  try {
    host::setAgent(settings);
  } catch (const host::SettingsError& refusal) {
    throw Failure(exitUsage, shown(std::string(refusal.what())),
                  "name a directory with a shorter path with --agent-dir");
  }
  return path;
}

void print(const Context& context, int status, const Failure* failure) {
  const Ending ending = {context.command, status, context.changed, warnings(), failure};
  const Report* const report = context.report ? &*context.report : nullptr;
  switch (formatOf(context)) {
    case Format::Json:
      printJson(std::cout, report, ending);
      break;
    case Format::Xml:
      printXml(std::cout, report, ending);
      break;
    case Format::JsonLines:
      printJsonLines(std::cout, report, ending);
      break;
    case Format::Csv:
      if (report) printCsv(std::cout, *report);
      break;
    case Format::Table: {
      if (context.quiet) break;
      if (report && report->table) report->table(std::cout, screenOf(context));
      break;
    }
  }
  std::cout.flush();
}

int fail(const Context& context, const Failure& failure) {
  print(context, failure.status(), &failure);
  printError(failure.what(), failure.advice());
  return failure.status();
}

// Adds advice if the agent's own list has not been imported yet.
Failure withAdvice(const Context& context, const Failure& failure) {
  const FailureOrigin& origin = failure.origin();
  if (origin.code != sitehlp::c_errorFileMissing || origin.file != ownListPath(context)) {
    return failure;
  }
  return Failure(failure.status(), failure.what(), "create the agent's list with `sitelist import`",
                 origin);
}

int perform(Context& context) {
  try {
    context.agentDirectory = usableDirectory(context.agentDirectory);
    recordLog(context.verbose);
    context.waitMilliseconds = parseWait(context.wait.value_or(c_defaultWait));
    const int status = context.action();
    reportLoggedErrors(true);
    print(context, status, nullptr);
    return status;
  } catch (const Failure& failure) {
    reportLoggedErrors(false);
    return fail(context, withAdvice(context, failure));
  }
}

// Finds the output format, so that a failure to parse the command line is also printed in it.
void lookForFormat(const std::vector<std::string>& arguments, Context& context) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string option = "--format=";
    if (arguments[i] == "--json") context.json = true;
    if (arguments[i].rfind(option, 0) == 0) context.format = arguments[i].substr(option.size());
    if (arguments[i] == "--format" && i + 1 < arguments.size()) context.format = arguments[i + 1];
  }
}

int help(const Context& context, CommandLine& line) {
  try {
    std::cout << helpOn(line, *context.helpOn);
    return exitSuccess;
  } catch (const Failure& failure) {
    return fail(context, failure);
  }
}

int run(Context& context, std::vector<std::string> arguments) {
  const std::vector<std::string> meshCommand = takeMeshCommand(arguments);
  std::string text;
  std::unique_ptr<CommandLine> line = makeCommandLineFor(arguments, context);
  CommandLine::Outcome outcome = line->parse(arguments, text);
  if (outcome != CommandLine::Outcome::Parsed || !context.action) {
    line.reset();
    context = Context();
    line = makeCommandLine(context);
    outcome = line->parse(arguments, text);
  }
  context.meshCommand = meshCommand;
  context.command = line->commandName();
  context.arguments = arguments;
  switch (outcome) {
    case CommandLine::Outcome::Answered:
      std::cout << text;
      return exitSuccess;
    case CommandLine::Outcome::Wrong:
      lookForFormat(arguments, context);
      return fail(context, Failure(exitUsage, shown(text), seeHelp(line->commandName())));
    case CommandLine::Outcome::Parsed:
      break;
  }
  if (context.json && !context.format.empty() && context.format != "json") {
    return fail(
        context,
        Failure(exitUsage, "--json and --format " + context.format + " cannot be used together",
                "give only one of them"));
  }
  if (context.quiet && context.verbose) {
    return fail(context, Failure(exitUsage, "--quiet and --verbose cannot be used together",
                                 "give only one of them"));
  }
  if (context.helpOn) return help(context, *line);
  if (!context.action) {
    if (context.quiet || formatOf(context) != Format::Table) {
      return fail(context, Failure(exitUsage, "a command is required", seeHelp("")));
    }
    std::cerr << line->help();
    return exitUsage;
  }
  if (context.quiet) omitMessages();
  return perform(context);
}

// Ends after an unexpected exception. Omits the report, because it may be the cause.
int failInternally(Context& context, const std::string& reason, const char* advice) {
  context.report.reset();
  return fail(context, Failure(exitInternal, reason, advice));
}

int runAndCatch(std::vector<std::string> arguments) {
  Context context;
  try {
    return run(context, std::move(arguments));
  } catch (const std::bad_alloc&) {
    return failInternally(context, "out of memory", "free memory and try again");
  } catch (const std::exception& e) {
    return failInternally(context, "internal error: " + shown(std::string(e.what())),
                          "report it with the output of --verbose");
  }
}

}  // namespace
}  // namespace tool

int main(int argc, char** argv) {
  tool::reserveStandardStreams();
  if (argc > 1 && std::string_view(argv[1]) == tool::c_completeCommand) {
    tool::complete(argc - 2, argv + 2);
    return tool::exitSuccess;
  }
  // The tool prints no messages of libcrypto, and loading them takes longer than a decryption. The
  // libraries do not use its exit handler either.
  OPENSSL_init_crypto(OPENSSL_INIT_NO_LOAD_CRYPTO_STRINGS | OPENSSL_INIT_NO_ATEXIT, nullptr);
  int status = tool::exitInternal;
  try {
    status = tool::runAndCatch(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const std::exception&) {
    tool::printError("out of memory");
  }
  std::cout.flush();
  // A negative result is lost with the output. Any other failure has its message.
  if (!std::cout && (status == tool::exitSuccess || status == tool::exitNegative)) {
    tool::printError(tool::outputFailure(), tool::c_checkOutput);
    status = tool::exitFile;
  }
  return status;
}
