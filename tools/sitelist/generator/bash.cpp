#include "tools/sitelist/generator/completion.h"
#include "tools/sitelist/generator/pages.h"

namespace tool {
namespace {

// Files are left to the shell itself, which knows how to quote them: it offers them when this
// offers nothing. Site names come from a document, so each is quoted.
constexpr const char* c_functions = R"sh(
_sitelist_no_files() {
  compopt +o bashdefault +o default 2>/dev/null
}

# Offers those of the words behind $1 and $2 that begin with $2, with $1 put in front.
_sitelist_offer() {
  local front=$1 typed=$2 word
  shift 2
  _sitelist_no_files
  for word in "$@"; do
    [[ $word == "$typed"* ]] || continue
    COMPREPLY+=("$front$word")
    [[ $word == *[=.] ]] && compopt -o nospace 2>/dev/null
  done
}

# Offers the names of the agent's sites: $1 is the program, $2 its data directory, $3 what is typed.
_sitelist_sites() {
  local name text typed
  local -a command=("${1/#\~\//$HOME/}" show --columns name --wide --format table --color never)
  [[ $2 == *[\$\`]* ]] && return
  text=${2/#\~\//$HOME/}
  text=${text//[\\\"\']/}
  [[ -n $text ]] && command+=("--agent-dir=$text")
  while IFS= read -r name; do
    case $3 in
      \'*) [[ $name == *\'* ]] && continue
        text=$name typed=${3:1} ;;
      \"*) [[ $name == *[\"\\\$\`!]* ]] && continue
        text=$name typed=${3:1} ;;
      *) printf -v text %q "$name"
        typed=${3//\\/} ;;
    esac
    [[ $name == "$typed"* ]] && COMPREPLY+=("$text")
  done < <("${command[@]}" 2>/dev/null </dev/null | tail -n +2)
}

# Offers values: $1 is the program, $2 its data directory, $3 what is typed.
_sitelist_value() {
  local front=
  case $how in
    words) _sitelist_offer '' "$3" $words ;;
    list)
      [[ $3 == *,* ]] && front=${3%,*},
      _sitelist_offer "$front" "${3##*,}" $words
      compopt -o nospace 2>/dev/null ;;
    site)
      _sitelist_no_files
      _sitelist_sites "$@" ;;
    directory) compopt -o dirnames 2>/dev/null ;;
    nothing) _sitelist_no_files ;;
  esac
}

# Looks for the option $2 at the command $1 and those above it.
_sitelist_find_option() {
  local path=$1
  while ! _sitelist_of_option "$path" "$2"; do
    [[ -z $path ]] && return 1
    [[ $path == *' '* ]] && path=${path% *} || path=
  done
}

_sitelist() {
  local IFS=$' \t\n'
  local path= place=1 option= directory= ended= how= words= commands= options= word i
  local current=${COMP_WORDS[COMP_CWORD]}
  COMPREPLY=()
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    [[ $word == = ]] && continue
    if [[ -n $option ]]; then
      [[ $option == --agent-dir ]] && directory=$word
      option=
    elif [[ -z $ended && $word == -- ]]; then
      ended=1
    elif [[ -z $ended && $word == --agent-dir=* ]]; then
      directory=${word#*=}
    elif [[ -z $ended && $word == -* ]]; then
      if _sitelist_find_option "$path" "$word"; then
        [[ $how == rest ]] && return
        option=$word
      fi
    else
      _sitelist_of_command "$path"
      if [[ " $commands " == *" $word "* ]]; then
        path=${path:+$path }$word place=1
      else
        ((place++))
      fi
    fi
  done
  [[ $current == = ]] && current=
  if [[ -n $option ]]; then
    _sitelist_find_option "$path" "$option"
    _sitelist_value "$1" "$directory" "$current"
    return
  fi
  if [[ -z $ended && $current == -* ]]; then
    while :; do
      _sitelist_of_command "$path"
      _sitelist_offer '' "$current" $options
      [[ -z $path ]] && return
      [[ $path == *' '* ]] && path=${path% *} || path=
    done
  fi
  if [[ ${COMP_WORDS[COMP_CWORD]} == = || ${COMP_WORDS[COMP_CWORD-1]} == = ]]; then
    _sitelist_no_files
    return
  fi
  _sitelist_of_command "$path"
  if ((place == 1)) && [[ -n $commands ]]; then
    _sitelist_offer '' "$current" $commands
    if _sitelist_of_argument "$path" 1 && [[ $how == file ]]; then
      compopt -o filenames 2>/dev/null
      while IFS= read -r word; do COMPREPLY+=("$word"); done < <(compgen -f -- "$current")
    fi
    return
  fi
  how=nothing
  _sitelist_of_argument "$path" "$place"
  _sitelist_value "$1" "$directory" "$current"
}

complete -o bashdefault -o default -F _sitelist sitelist
)sh";

std::string commandCases(const CommandInfo& program) {
  std::string cases;
  forEachCommand(program, [&](const CommandInfo& command, const std::string& path) {
    std::vector<std::string> names;
    for (const CommandInfo& below : command.commands) names.push_back(below.name);
    std::vector<std::string> options;
    for (const OptionInfo& option : ownOptions(command, path)) {
      options.push_back(option.names.back());
    }
    cases += "    " + quoted(path) + ")\n      commands=" + quoted(joined(names)) +
             "\n      options=" + quoted(joined(options)) + " ;;\n";
  });
  return cases;
}

std::string caseOf(const std::string& pattern, const OptionInfo& option) {
  const std::string how = takesRest(option) ? "rest" : completionOf(option);
  const std::vector<std::string>& words = wordsFor(option);
  return "    " + pattern + ") how=" + how +
         (words.empty() ? "" : " words=" + quoted(joined(words))) + " ;;\n";
}

std::string optionCases(const CommandInfo& program) {
  std::string cases;
  forEachCommand(program, [&](const CommandInfo& command, const std::string& path) {
    for (const OptionInfo& option : command.options) {
      if (!takesValue(option) && !takesRest(option)) continue;
      std::string pattern;
      for (const std::string& name : option.names) {
        pattern += (pattern.empty() ? "" : " | ") + quoted(path + ':' + name);
      }
      cases += caseOf(pattern, option);
    }
  });
  return cases;
}

std::string argumentCases(const CommandInfo& program) {
  std::string cases;
  forEachCommand(program, [&](const CommandInfo& command, const std::string& path) {
    int place = 0;
    for (const OptionInfo& argument : command.arguments) {
      const std::string which = argument.isRepeatable ? "" : std::to_string(++place);
      cases += caseOf(quoted(path + ':' + which) + (which.empty() ? "*" : ""), argument);
    }
  });
  return cases;
}

std::string function(const std::string& comment, const std::string& name, const std::string& word,
                     const std::string& cases, const std::string& otherwise) {
  return "\n# " + comment + '\n' + name + "() {\n  case " + word + " in\n" + cases + "    *) " +
         otherwise + " ;;\n  esac\n}\n";
}

}  // namespace

std::string bashScript(const CommandInfo& program) {
  return "# Completion of sitelist for bash, made from its table of commands.\n" +
         function("The commands and options of the command $1.", "_sitelist_of_command", "$1",
                  commandCases(program), "commands= options=") +
         function("How the value of the option $2 of the command $1 is completed.",
                  "_sitelist_of_option", "$1:$2", optionCases(program), "return 1") +
         function("How the argument of the command $1 at the place $2 is completed.",
                  "_sitelist_of_argument", "$1:$2", argumentCases(program), "return 1") +
         c_functions;
}

}  // namespace tool
