#include "tools/sitelist/generator/completion.h"
#include "tools/sitelist/generator/pages.h"

namespace tool {
namespace {

constexpr const char* c_head = R"sh(#compdef sitelist
# Completion of sitelist for zsh, made from its table of commands.

# The names of the agent's sites. They come from a document; compadd quotes them.
_sitelist_sites() {
  local -a names command given expl
  local directory at=${sitelist_line[(I)--agent-dir]}
  command=(${(Q)sitelist_line[1]/#\~\//$HOME/} show --columns name --wide --format table --color never)
  if ((at)); then
    directory=$sitelist_line[at+1]
  else
    given=(${(M)sitelist_line:#--agent-dir=*})
    directory=${given[-1]#*=}
  fi
  [[ -n $directory ]] && command+=(--agent-dir=${(Q)directory/#\~\//$HOME/})
  names=(${(f)"$($command 2>/dev/null </dev/null)"})
  shift names 2>/dev/null
  _wanted sites expl site compadd -a names
}

# The words behind "-" in the arguments; no space comes behind one that something is to follow.
_sitelist_words() {
  local at=${@[(i)-]}
  local -a words=("${@[at+1,-1]}")
  compadd "${@[1,at-1]}" -S '' - ${(M)words:#*[=.]}
  compadd "${@[1,at-1]}" - ${words:#*[=.]}
}
)sh";

constexpr const char* c_tail = R"sh(
_sitelist() {
  local -a sitelist_line=($words)
  _sitelist_command
}

_sitelist "$@"
)sh";

std::string escaped(const std::string& text, const std::string& special) {
  std::string result;
  for (const char c : text) {
    if (special.find(c) != std::string::npos) result += '\\';
    result += c;
  }
  return result;
}

std::string functionName(const std::string& path) {
  std::string name = "_sitelist_command" + (path.empty() ? "" : '_' + path);
  for (char& c : name) {
    if (c == ' ' || c == '-') c = '_';
  }
  return name;
}

// ":MESSAGE:ACTION", as _arguments takes it.
std::string valueSpec(const OptionInfo& option) {
  const std::string message = ':' + escaped(option.valueName, ":\\") + ':';
  const std::string how = completionOf(option);
  const std::string words = joined(wordsFor(option));
  if (how == "words") return message + "_sitelist_words - " + words;
  if (how == "list") return message + "_values -s , " + option.valueName + ' ' + words;
  if (how == "site") return message + "_sitelist_sites";
  if (how == "directory") return message + "_files -/";
  return message + (how == "file" ? "_files" : " ");
}

std::string optionSpecs(const std::vector<OptionInfo>& options) {
  std::string specs;
  for (const OptionInfo& option : options) {
    const std::string help = '[' + escaped(brief(option.help), "[]\\") + ']';
    const bool isAnswer = option.names.back() == "--help" || option.names.back() == "--version";
    std::string others = isAnswer ? "(- *)" : option.isRepeatable ? "*" : "";
    if (others.empty() && option.names.size() > 1) others = '(' + joined(option.names) + ')';
    for (const std::string& name : option.names) {
      std::string spec = others + name + (takesValue(option) ? "=" : "") + help;
      if (takesValue(option)) spec += valueSpec(option);
      if (takesRest(option)) spec += ":*::" + escaped(option.valueName, ":\\") + ": _normal";
      specs += "    " + quoted(spec) + '\n';
    }
  }
  return specs;
}

std::string argumentSpecs(const std::vector<OptionInfo>& arguments) {
  std::string specs;
  for (const OptionInfo& argument : arguments) {
    const std::string where = argument.isRepeatable ? "*" : argument.isRequired ? "" : ":";
    specs += "    " + quoted(where + valueSpec(argument)) + '\n';
  }
  return specs;
}

std::string commandList(const CommandInfo& command) {
  std::string list = "  local -a commands=(\n";
  for (const CommandInfo& below : command.commands) {
    list += "    " + quoted(below.name + ':' + below.description) + '\n';
  }
  return list + "  )\n";
}

std::string dispatch(const CommandInfo& command, const std::string& path) {
  std::string cases;
  for (const CommandInfo& below : command.commands) {
    const std::string name = path.empty() ? below.name : path + ' ' + below.name;
    cases += "        " + below.name + ") " + functionName(name) + " && ret=0 ;;\n";
  }
  const bool hasFile = !command.arguments.empty();
  return "  case $state in\n"
         "    command)\n"
         "      _describe -t commands command commands && ret=0\n" +
         std::string(hasFile ? "      _files && ret=0\n" : "") +
         "      ;;\n"
         "    rest)\n"
         "      case $words[1] in\n" +
         cases +
         "      esac\n"
         "      ;;\n"
         "  esac\n";
}

std::string functionOf(const CommandInfo& command, const std::string& path) {
  const bool hasCommands = !command.commands.empty();
  std::string text = '\n' + functionName(path) + "() {\n";
  if (hasCommands) {
    text += "  local curcontext=$curcontext state line ret=1\n  local -A opt_args\n" +
            commandList(command);
  }
  text += "  local -a above=($above $own)\n  local -a own=(\n" +
          optionSpecs(ownOptions(command, path)) + "  )\n";
  if (!hasCommands) {
    return text + "  local -a places=(\n" + argumentSpecs(command.arguments) +
           "  )\n  _arguments -S $above $own $places\n}\n";
  }
  text += "  _arguments -C -S $above $own '(-)1:command:->command' '(-)*:: :->rest' && ret=0\n";
  return text + dispatch(command, path) + "  return ret\n}\n";
}

}  // namespace

std::string zshScript(const CommandInfo& program) {
  std::string text = c_head;
  forEachCommand(program, [&](const CommandInfo& command, const std::string& path) {
    text += functionOf(command, path);
  });
  return text + c_tail;
}

}  // namespace tool
