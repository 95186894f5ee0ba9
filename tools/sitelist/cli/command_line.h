#ifndef TOOLS_SITELIST_CLI_COMMAND_LINE_H
#define TOOLS_SITELIST_CLI_COMMAND_LINE_H

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tools/sitelist/cli/command_table.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tool {

// What the parser does not keep of its options.
struct OptionHints {
  std::vector<std::string> choices;
  std::function<std::vector<std::string>()> suggestions;
  Completion completes = Completion::Nothing;
};
using HintTable = std::map<const CLI::Option*, OptionHints>;

// One option or argument of a command. Handles on the command line's own objects, which live until
// the program ends its work. The parser behind them is kept out of this header: compiling it takes
// seconds, and every command would.
class Option {
 public:
  Option(CLI::Option* option, HintTable* hints) : m_option(option), m_hints(hints) {}
  Option& required();
  // What stands for the value in help texts; empty for nothing.
  Option& type_name(const std::string& name);
  // The only values there are.
  Option& choices(const std::vector<std::string>& values);
  // An empty value is wrong usage.
  Option& not_empty();
  // Words that the completion of a shell offers as the value, among others that there may be.
  // They are asked for only when the command line is described.
  Option& suggests(std::function<std::vector<std::string>()> values);
  // What else it offers, if not what the name of the value says: files for FILE and PATH,
  // directories for DIR, also behind a "_".
  Option& completes(Completion what);

 private:
  CLI::Option* m_option;
  HintTable* m_hints;
};

// A command, or the program itself. What options write to has to outlive the parsing.
class Command {
 public:
  Command(CLI::App* app, HintTable* hints) : m_app(app), m_hints(hints) {}
  Command add_subcommand(const std::string& name, const std::string& description);
  Option add_option(const std::string& name, std::string& value, const std::string& help);
  Option add_option(const std::string& name, std::vector<std::string>& values,
                    const std::string& help);
  // An option that may be given several times, with one value each time.
  Option add_repeated(const std::string& name, std::vector<std::string>& values,
                      const std::string& help);
  Option add_flag(const std::string& name, bool& value, const std::string& help);
  void footer(const std::string& text);
  // Called when the command line names this command.
  void callback(std::function<void()> function);
  // Options that this command does not know are looked for in the one above.
  void fallthrough();
  bool has_subcommand(const std::string& name) const;
  // Whether the command line named this command.
  bool parsed() const;

 private:
  CLI::App* m_app;
  HintTable* m_hints;
};

// The command line as a whole.
class CommandLine {
 public:
  enum class Outcome { Parsed, Answered, Wrong };

  CommandLine(const std::string& description, const std::string& name);
  ~CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  Command program();
  void version(const std::string& text);
  std::string help() const;
  // All of it as data, with the program itself at the top.
  CommandInfo describe() const;
  // The command that was asked for, with those above it: "policies set".
  std::string commandName() const;
  // Answered: `text` is the help or the version that was asked for. Wrong: `text` says why.
  Outcome parse(std::vector<std::string> arguments, std::string& text);

 private:
  static constexpr std::size_t c_nameColumns = 22;  // of options and commands in help texts

  std::unique_ptr<CLI::App> m_app;
  HintTable m_hints;
};

}  // namespace tool

#endif
