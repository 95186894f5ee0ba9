#ifndef TOOLS_SITELIST_CLI_TYPED_LINE_H
#define TOOLS_SITELIST_CLI_TYPED_LINE_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tools/sitelist/cli/command_table.h"

namespace tool {

// The words of a command line before the last one. They are read in the same way as by CommandLine,
// but unknown words are ignored.
class TypedLine {
 public:
  // `program` must outlive the object.
  explicit TypedLine(const CommandInfo& program) : m_commands{&program} {}

  void read(const std::string& word);

  // Returns the program and the commands on the line. Each is a subcommand of the one before it.
  const std::vector<const CommandInfo*>& commands() const { return m_commands; }
  // Returns the option whose value is the next word, or null.
  const OptionInfo* waiting() const { return m_waiting; }
  // If the next word is not an option, returns the argument to which it belongs. Returns null if no
  // argument is left.
  const OptionInfo* argument() const;
  // Returns whether the next word may be a command.
  bool takesCommand() const { return m_place == 0 && !m_areOptionsOver; }
  // Returns whether there was a "--".
  bool areOptionsOver() const { return m_areOptionsOver; }
  // Returns whether the following words belong to another program.
  bool isRest() const { return m_isRest; }

  // Finds an option of the last command or of a command above it. Returns null if there is none.
  const OptionInfo* findOption(const std::string& name) const;
  bool isGiven(const OptionInfo& option) const { return m_given.count(&option) != 0; }
  // Returns the value of an option, by its last name, or of an argument. Returns an empty text if
  // there is none.
  std::string value(const std::string& name) const;

 private:
  void readOption(const std::string& word);
  void readArgument(const std::string& word);

  std::vector<const CommandInfo*> m_commands;
  const OptionInfo* m_waiting = nullptr;
  bool m_areOptionsOver = false;
  bool m_isRest = false;
  std::size_t m_place = 0;  // position of the next argument of the last command
  std::set<const OptionInfo*> m_given;
  std::map<std::string, std::string> m_values;
};

// Returns whether the command line reads the word as an option: it begins with "-" and has more
// characters.
bool isOptionWord(const std::string& word);

}  // namespace tool

#endif
