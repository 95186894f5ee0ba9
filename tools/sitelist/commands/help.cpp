#include <algorithm>
#include <memory>

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/matching.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/commands/program.h"

namespace tool {
namespace {

void requireCommand(const CommandInfo& program, const std::vector<std::string>& words) {
  const CommandInfo* command = &program;
  std::string name;
  for (const std::string& word : words) {
    name += (name.empty() ? "" : " ") + word;
    std::vector<std::string> known;
    for (const CommandInfo& each : command->commands) known.push_back(each.name);
    const auto found = std::find(known.begin(), known.end(), word);
    if (found == known.end()) {
      throw Failure(exitUsage, "unknown command \"" + shown(name) + "\"" + suggestion(word, known),
                    "see `sitelist --help`");
    }
    command = &command->commands[static_cast<std::size_t>(found - known.begin())];
  }
}

}  // namespace

std::string helpOn(CommandLine& line, std::vector<std::string> command) {
  requireCommand(line.describe(), command);
  command.emplace_back("--help");
  std::string text;
  line.parse(command, text);
  return text;
}

void addHelp(Command& app, Context& context) {
  Command command = app.add_subcommand("help", "Describe the tool, or a command");
  const auto words = std::make_shared<std::vector<std::string>>();
  command.add_option("COMMAND", *words, "The command, such as show or edit set (default: the tool)")
      .type_name("")
      .suggests(commandNames);
  command.footer(
      "`sitelist help COMMAND` prints the same as `sitelist COMMAND --help`.\n"
      "\n"
      "Examples:\n"
      "  sitelist help\n"
      "  sitelist help edit set\n");
  command.callback([&context, words] { context.helpOn = *words; });
}

}  // namespace tool
