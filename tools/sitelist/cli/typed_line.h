#ifndef TOOLS_SITELIST_CLI_TYPED_LINE_H
#define TOOLS_SITELIST_CLI_TYPED_LINE_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tools/sitelist/cli/command_table.h"

namespace tool {

// The words of a command line before the one that is being typed. They are read as CommandLine
// reads them, but unknown words are ignored.
class TypedLine {
 public:
  // `program` has to outlive the object.
  explicit TypedLine(const CommandInfo& program) : m_commands{&program} {}

  void read(const std::string& word);

  // The program and the commands on the line, each a subcommand of the one before it.
  const std::vector<const CommandInfo*>& commands() const { return m_commands; }
  // The option whose value is the next word; null when there is none.
  const OptionInfo* waiting() const { return m_waiting; }
  // The argument that the next word is if it is not an option; null when no argument is left.
  const OptionInfo* argument() const;
  // Whether the next word may be a command.
  bool takesCommand() const { return m_place == 0 && !m_areOptionsOver; }
  // Whether there was a "--".
  bool areOptionsOver() const { return m_areOptionsOver; }
  // Whether the following words belong to another program.
  bool isRest() const { return m_isRest; }

  // Looks in the last command, then in those above it. Null when there is no such option.
  const OptionInfo* findOption(const std::string& name) const;
  bool isGiven(const OptionInfo& option) const { return m_given.count(&option) != 0; }
  // The value of an option, by its last name, or of an argument; empty when there is none.
  std::string value(const std::string& name) const;

 private:
  void readOption(const std::string& word);
  void readArgument(const std::string& word);

  std::vector<const CommandInfo*> m_commands;
  const OptionInfo* m_waiting = nullptr;
  bool m_areOptionsOver = false;
  bool m_isRest = false;
  std::size_t m_place = 0;  // of the next argument of the last command
  std::set<const OptionInfo*> m_given;
  std::map<std::string, std::string> m_values;
};

// Whether the command line reads the word as an option: it begins with "-" and is longer.
bool isOptionWord(const std::string& word);

}  // namespace tool

#endif
