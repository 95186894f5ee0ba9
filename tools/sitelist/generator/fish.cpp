#include "tools/sitelist/generator/completion.h"
#include "tools/sitelist/generator/pages.h"

namespace tool {
namespace {

constexpr const char* c_functions = R"sh(
# Succeeds where the command $argv[1] is asked for, or one below it; with $argv[2], where it is the
# command itself whose argument of that number is next. A number with a "+" stands for all from there.
function __sitelist_at
    set -l name ''
    set -l chain ''
    set -l place 1
    set -l isValue 0
    set -l line (commandline -opc)
    for word in $line[2..-1]
        if test $isValue = 1
            set isValue 0
        else if contains -- (string trim -- "$name $word") $__sitelist_commands
            set name (string trim -- "$name $word")
            set -a chain $name
            set place 1
        else if contains -- "$name:$word" $__sitelist_takes_rest
            return 1
        else if string match -q -- '-*' $word
            for above in $chain
                contains -- "$above:$word" $__sitelist_takes_value; and set isValue 1
            end
        else
            set place (math $place + 1)
        end
    end
    if not set -q argv[2]
        contains -- $argv[1] $chain
        return
    end
    test "$name" = "$argv[1]"; or return
    string match -q -- '*+' $argv[2]; and test $place -ge (string replace + '' -- $argv[2])
    or test $place = $argv[2]
end

# Succeeds behind the option $argv[1].
function __sitelist_behind
    contains -- $argv[1] (commandline -opc)
end

# The words, each behind those that stand there already, with commas between them.
function __sitelist_list
    set -l typed (string replace -r -- '^--[^=]*=' '' (commandline -ct))
    set -l front (string replace -r -- '[^,]*$' '' $typed)
    printf '%s\n' "$front"$argv
end

# The names of the agent's sites.
function __sitelist_sites
    set -l line (commandline -opc)
    set -l command $line[1] show --columns name --wide --format table --color never
    if set -l at (contains -i -- --agent-dir $line)
        set -a command --agent-dir=$line[(math $at + 1)]
    else
        set -a command (string match -- '--agent-dir=*' $line)
    end
    $command 2>/dev/null </dev/null | tail -n +2
end

complete -c sitelist -f
)sh";

// One word for fish, which takes a backslash between single quotes for an escape.
std::string fishQuoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') result += '\\';
    result += c;
  }
  return result + '\'';
}

std::string at(const std::string& path, const std::string& place) {
  return "-n " + fishQuoted("__sitelist_at \"" + path + '"' + (place.empty() ? "" : ' ' + place));
}

std::string valueOf(const OptionInfo& option) {
  const std::string how = completionOf(option);
  const std::string words = joined(wordsFor(option));
  if (how == "words") return "-x -a " + fishQuoted(words);
  if (how == "list") return "-x -a " + fishQuoted("(__sitelist_list " + words + ')');
  if (how == "site") return "-x -a '(__sitelist_sites)'";
  if (how == "directory") return "-x -a '(__fish_complete_directories)'";
  return how == "file" ? "-r -F" : "-x";
}

std::string table(const std::string& name, const std::vector<std::string>& words) {
  std::string text = "set -g " + name;
  for (const std::string& word : words) text += " \\\n    " + fishQuoted(word);
  return text + '\n';
}

std::string tables(const CommandInfo& program) {
  std::vector<std::string> commands;
  std::vector<std::string> withValue;
  std::vector<std::string> withRest;
  forEachCommand(program, [&](const CommandInfo& command, const std::string& path) {
    if (!path.empty()) commands.push_back(path);
    for (const OptionInfo& option : command.options) {
      for (const std::string& name : option.names) {
        if (takesValue(option)) withValue.push_back(path + ':' + name);
        if (takesRest(option)) withRest.push_back(path + ':' + name);
      }
    }
  });
  return table("__sitelist_commands", commands) + table("__sitelist_takes_value", withValue) +
         table("__sitelist_takes_rest", withRest);
}

std::string optionLine(const OptionInfo& option, const std::string& path) {
  std::string line = "complete -c sitelist";
  if (!path.empty()) line += ' ' + at(path, "");
  for (const std::string& name : option.names) {
    line += name.rfind("--", 0) == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  if (takesValue(option)) line += ' ' + valueOf(option);
  line += " -d " + fishQuoted(brief(option.help)) + '\n';
  if (!takesRest(option)) return line;
  return line + "complete -c sitelist -n '__sitelist_behind " + option.names.back() + "' -F\n";
}

std::string commandLines(const CommandInfo& command, const std::string& path) {
  std::string lines = "\n# " + (path.empty() ? command.name : path) + '\n';
  for (const CommandInfo& below : command.commands) {
    lines += "complete -c sitelist " + at(path, "1") + " -a " + below.name + " -d " +
             fishQuoted(below.description) + '\n';
  }
  for (const OptionInfo& option : ownOptions(command, path)) lines += optionLine(option, path);
  int place = 0;
  for (const OptionInfo& argument : command.arguments) {
    const std::string which = std::to_string(++place) + (argument.isRepeatable ? "+" : "");
    if (completionOf(argument) != "nothing") {
      const std::string how = completionOf(argument) == "file" ? "-F" : valueOf(argument);
      lines += "complete -c sitelist " + at(path, which) + ' ' + how + '\n';
    }
  }
  return lines;
}

}  // namespace

std::string fishScript(const CommandInfo& program) {
  std::string text = "# Completion of sitelist for fish, made from its table of commands.\n" +
                     tables(program) + c_functions;
  forEachCommand(program, [&](const CommandInfo& command, const std::string& path) {
    text += commandLines(command, path);
  });
  return text;
}

}  // namespace tool
