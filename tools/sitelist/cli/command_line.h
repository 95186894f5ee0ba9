#ifndef TOOLS_SITELIST_CLI_COMMAND_LINE_H
#define TOOLS_SITELIST_CLI_COMMAND_LINE_H

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tools/sitelist/cli/command_table.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tool {

// Properties of options that the parser does not store.
struct OptionHints {
  std::vector<std::string> choices;
  std::function<std::vector<std::string>()> suggestions;
  Completion completes = Completion::Nothing;
};
struct HintTable {
  std::map<const CLI::Option*, OptionHints> options;
  std::set<const CLI::App*> passwordCommands;
};

// A handle on one option or argument of a command. The option belongs to the command line. This
// header does not include the parser, because that would make the compilation of every command
// slow.
class Option {
 public:
  Option(CLI::Option* option, HintTable* hints) : m_option(option), m_hints(hints) {}
  Option& required();
  // Sets the name of the value in help texts; empty for no name.
  Option& type_name(const std::string& name);
  // Sets the permitted values.
  Option& choices(const std::vector<std::string>& values);
  // Makes an empty value wrong usage.
  Option& not_empty();
  // Sets a function for values that the completion of a shell offers. Other values are also
  // permitted. Only CommandLine::describe calls the function.
  Option& suggests(std::function<std::vector<std::string>()> values);
  // Sets what the completion of a shell also offers. By default the name of the value determines
  // it: files for FILE and PATH, directories for DIR. The name may also end with "_" and one of
  // these words.
  Option& completes(Completion what);

 private:
  CLI::Option* m_option;
  HintTable* m_hints;
};

// A handle on a command, or on the program itself. The variables of options must exist until the
// command line is parsed.
class Command {
 public:
  Command(CLI::App* app, HintTable* hints) : m_app(app), m_hints(hints) {}
  Command add_subcommand(const std::string& name, const std::string& description);
  Option add_option(const std::string& name, std::string& value, const std::string& help);
  // Does the same for an option without a default. The value is empty if it is not given.
  Option add_option(const std::string& name, std::optional<std::string>& value,
                    const std::string& help);
  Option add_option(const std::string& name, std::vector<std::string>& values,
                    const std::string& help);
  // Adds an option that may be given several times, with one value each time.
  Option add_repeated(const std::string& name, std::vector<std::string>& values,
                      const std::string& help);
  Option add_flag(const std::string& name, bool& value, const std::string& help);
  void footer(const std::string& text);
  // Sets a function that is called when the command line names this command.
  void callback(std::function<void()> function);
  // Makes messages omit an unknown option of this command, because it may be a password.
  void takes_password();
  // Makes this command accept the options of the command above it.
  void fallthrough();
  bool has_subcommand(const std::string& name) const;
  // Returns whether the command line named this command.
  bool parsed() const;

 private:
  CLI::App* m_app;
  HintTable* m_hints;
};

// The complete command line.
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
  // Returns a description of all commands and options, with the program itself as the root.
  CommandInfo describe() const;
  // Returns the given command with the commands above it, for example "policies set".
  std::string commandName() const;
  // Parses the arguments. If the result is Answered, `text` is the help or version text. If it is
  // Wrong, `text` is the reason.
  Outcome parse(const std::vector<std::string>& arguments, std::string& text);

 private:
  static constexpr std::size_t c_nameColumns = 22;  // width of the names in help texts

  std::unique_ptr<CLI::App> m_app;
  HintTable m_hints;
};

}  // namespace tool

#endif
