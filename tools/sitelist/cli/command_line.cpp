#include "tools/sitelist/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <utility>

#include "tools/sitelist/cli/matching.h"

namespace tool {
namespace {

// Returns the completion for the name of a value.
Completion completionByName(const std::string& valueName) {
  const std::string word = valueName.substr(valueName.rfind('_') + 1);
  if (word == "FILE" || word == "PATH") return Completion::File;
  return word == "DIR" ? Completion::Directory : Completion::Nothing;
}

OptionInfo describeOption(const CLI::Option& option, const HintTable& hints) {
  OptionInfo info;
  for (const std::string& name : option.get_snames()) info.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) info.names.push_back("--" + name);
  info.isFlag = option.get_items_expected_max() == 0;
  info.valueName = option.get_positional() ? option.get_name(true) : option.get_type_name();
  info.help = option.get_description();
  info.isRequired = option.get_required();
  info.isRepeatable = option.get_items_expected_max() > 1 ||
                      option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
  info.completes = completionByName(info.valueName);
  const auto found = hints.options.find(&option);
  if (found == hints.options.end()) return info;
  info.choices = found->second.choices;
  if (found->second.suggestions) info.suggestions = found->second.suggestions();
  if (found->second.completes != Completion::Nothing) info.completes = found->second.completes;
  return info;
}

// Replaces three texts of the parser: "--host: 1 required NAME missing" for a missing value,
// "--host: At Most 1 required but received 2" for an option that is given twice, and "Could not
// convert: --json = VALUE" for a flag with a value. The value may be a password.
std::string inPlainWords(const std::string& text) {
  const std::string unconverted = "Could not convert: ";
  if (text.rfind(unconverted, 0) == 0) {
    const std::size_t stop = text.find(" = ");
    return text.substr(unconverted.size(), stop - unconverted.size()) +
           ": the option takes no value";
  }
  const std::size_t twice = text.find(": At Most 1 required but received ");
  if (twice != std::string::npos) {
    return text.substr(0, twice) + ": the option is given more than once";
  }
  const std::string start = ": 1 required ";
  const std::string end = " missing";
  const std::size_t at = text.find(start);
  const std::size_t stop = text.rfind(end);
  if (at == std::string::npos || stop == std::string::npos) return text;
  const std::size_t name = at + start.size();
  return text.substr(0, at) + ": " + text.substr(name, stop - name) + " is missing";
}

bool isOptionLike(const std::string& word) { return word.size() > 1 && word[0] == '-'; }

// Returns the options of a command and of the commands above it.
std::vector<std::string> optionsOf(const CLI::App* app) {
  std::vector<std::string> names;
  for (; app; app = app->get_parent()) {
    for (const CLI::Option* option : app->get_options()) {
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
  }
  return names;
}

std::vector<std::string> commandsOf(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  return names;
}

// Lists the arguments before the first option. A word after it may be its value.
std::string argumentsIn(const std::vector<std::string>& words) {
  std::string text;
  std::size_t count = 0;
  for (const std::string& word : words) {
    if (isOptionLike(word)) break;
    text += count++ == 0 ? " \"" : ", \"";
    text.append(word).append("\"");
  }
  return (count == 1 ? "unexpected argument" : "unexpected arguments") + text;
}

const CLI::App& chosenCommand(const CLI::App& program) {
  const CLI::App* app = &program;
  while (!app->get_subcommands().empty()) app = app->get_subcommands().front();
  return *app;
}

// "policies set"
std::string nameOfChosenCommand(const CLI::App& program) {
  std::string name;
  for (const CLI::App* app = &program; !app->get_subcommands().empty();) {
    app = app->get_subcommands().front();
    name += (name.empty() ? "" : " ") + app->get_name();
  }
  return name;
}

std::string unknownOption(const CLI::App& program, const HintTable& hints,
                          const std::string& word) {
  const CLI::App* const app = &chosenCommand(program);
  const std::string name = word.substr(0, word.find('='));
  const std::string similar = suggestion(name, optionsOf(app));
  if (similar.empty() && hints.passwordCommands.count(app) != 0) {
    return "unknown option; it is not shown, because it may be a password";
  }
  return "unknown option \"" + name + "\"" + similar;
}

// Describes the words that the parser could not use. Omits the value of an option, because it may
// be a secret.
std::string unexpected(const CLI::App& program, const HintTable& hints) {
  const CLI::App* const app = &chosenCommand(program);
  const std::string command = nameOfChosenCommand(program);
  const std::vector<std::string> words = program.remaining(true);
  const std::string& word = words.front();
  if (isOptionLike(word)) return unknownOption(program, hints, word);
  const bool hasArguments =
      !app->get_options([](const CLI::Option* option) { return option->get_positional(); }).empty();
  const std::vector<std::string> commands = commandsOf(*app);
  // The word may be a password that was meant for standard input.
  if (commands.empty() && !hasArguments) return "\"" + command + "\" takes no argument";
  if (commands.empty() || hasArguments) return argumentsIn(words);
  return "unknown command \"" + (command.empty() ? "" : command + " ") + word + "\"" +
         suggestion(word, commands);
}

// Returns the letters of the short options of a command and of the commands above it.
std::string lettersOf(const CLI::App* app) {
  std::string letters;
  for (; app; app = app->get_parent()) {
    for (const CLI::Option* option : app->get_options()) {
      for (const std::string& name : option->get_snames()) letters += name;
    }
  }
  return letters;
}

// Returns whether the word is one or more short options with the one for help among them.
bool hasHelpLetter(const std::string& word) {
  return isOptionLike(word) && word[1] != '-' && word.find('h') != word.npos;
}

// Returns the word that the parser took for a request for help although it is none: it takes
// "-hidden" for "-h" with further letters. Returns null if help was asked for.
const std::string* falseHelp(const CLI::App& program, const std::vector<std::string>& words) {
  const std::string letters = lettersOf(&chosenCommand(program));
  const bool isAsked = std::any_of(words.begin(), words.end(), [&](const std::string& word) {
    return word == "--help" ||
           (hasHelpLetter(word) && word.find_first_not_of(letters, 1) == word.npos);
  });
  if (isAsked) return nullptr;
  const auto found = std::find_if(words.begin(), words.end(), hasHelpLetter);
  return found == words.end() ? nullptr : &*found;
}

CommandInfo describeCommand(const CLI::App& app, const HintTable& hints) {
  CommandInfo info;
  info.name = app.get_name();
  info.description = app.get_description();
  info.footer = app.get_footer();
  for (const CLI::Option* option : app.get_options()) {
    (option->get_positional() ? info.arguments : info.options)
        .push_back(describeOption(*option, hints));
  }
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    info.commands.push_back(describeCommand(*command, hints));
  }
  return info;
}

}  // namespace

Option& Option::required() {
  m_option->required();
  return *this;
}

Option& Option::type_name(const std::string& name) {
  m_option->type_name(name);
  return *this;
}

Option& Option::choices(const std::vector<std::string>& values) {
  m_hints->options[m_option].choices = values;
  m_option->check([values](const std::string& value) {
    if (std::find(values.begin(), values.end(), value) != values.end()) return std::string();
    std::string known;
    for (const std::string& each : values) known += (known.empty() ? "" : ", ") + each;
    return "\"" + value + "\" is not one of " + known + suggestion(value, values);
  });
  return *this;
}

Option& Option::suggests(std::function<std::vector<std::string>()> values) {
  m_hints->options[m_option].suggestions = std::move(values);
  return *this;
}

Option& Option::completes(Completion what) {
  m_hints->options[m_option].completes = what;
  return *this;
}

Option& Option::not_empty() {
  m_option->check([](const std::string& value) {
    return value.empty() ? std::string("the value is empty") : std::string();
  });
  return *this;
}

// With at most one command at each level, a word after a command is an argument even if another
// command has this name.
Command Command::add_subcommand(const std::string& name, const std::string& description) {
  m_app->require_subcommand(0, 1);
  return Command(m_app->add_subcommand(name, description)->group("Commands"), m_hints);
}

Option Command::add_option(const std::string& name, std::string& value, const std::string& help) {
  return Option(m_app->add_option(name, value, help), m_hints);
}

Option Command::add_option(const std::string& name, std::optional<std::string>& value,
                           const std::string& help) {
  return Option(m_app->add_option(name, value, help), m_hints);
}

Option Command::add_option(const std::string& name, std::vector<std::string>& values,
                           const std::string& help) {
  return Option(m_app->add_option(name, values, help), m_hints);
}

Option Command::add_repeated(const std::string& name, std::vector<std::string>& values,
                             const std::string& help) {
  return Option(m_app->add_option(name, values, help)
                    ->expected(1)
                    ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll),
                m_hints);
}

Option Command::add_flag(const std::string& name, bool& value, const std::string& help) {
  return Option(m_app->add_flag(name, value, help), m_hints);
}

void Command::footer(const std::string& text) { m_app->footer(text); }

void Command::callback(std::function<void()> function) { m_app->callback(std::move(function)); }

void Command::takes_password() { m_hints->passwordCommands.insert(m_app); }

void Command::fallthrough() { m_app->fallthrough(); }

bool Command::has_subcommand(const std::string& name) const {
  const CLI::App& app = *m_app;
  return !app.get_subcommands([&](const CLI::App* each) { return each->get_name() == name; })
              .empty();
}

bool Command::parsed() const { return m_app->parsed(); }

CommandLine::CommandLine(const std::string& description, const std::string& name)
    : m_app(std::make_unique<CLI::App>(description, name)) {
  m_app->fallthrough();
  m_app->set_help_flag("-h,--help", "Print a help message and exit");
  m_app->get_formatter()->column_width(c_nameColumns);
  m_app->get_formatter()->label("SUBCOMMAND", "COMMAND");
}

CommandLine::~CommandLine() = default;

Command CommandLine::program() { return Command(m_app.get(), &m_hints); }

void CommandLine::version(const std::string& text) {
  m_app->set_version_flag("--version", text, "Print the version and exit");
}

std::string CommandLine::help() const { return m_app->help(); }

CommandInfo CommandLine::describe() const { return describeCommand(*m_app, m_hints); }

std::string CommandLine::commandName() const { return nameOfChosenCommand(*m_app); }

CommandLine::Outcome CommandLine::parse(const std::vector<std::string>& arguments,
                                        std::string& text) {
  for (CLI::App* command : m_app->get_subcommands({})) command->fallthrough();
  std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
  try {
    m_app->parse(reversed);
    return Outcome::Parsed;
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) {
      const std::string* const word =
          dynamic_cast<const CLI::CallForHelp*>(&e) ? falseHelp(*m_app, arguments) : nullptr;
      if (word) {
        text = unknownOption(*m_app, m_hints, *word);
        return Outcome::Wrong;
      }
      std::ostringstream answer;
      m_app->exit(e, answer);
      text = answer.str();
      return Outcome::Answered;
    }
    const bool isExtra = e.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError);
    text = isExtra ? unexpected(*m_app, m_hints) : inPlainWords(e.what());
    return Outcome::Wrong;
  }
}

}  // namespace tool
