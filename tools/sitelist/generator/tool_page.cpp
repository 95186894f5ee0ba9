#include <cctype>

#include "host/agent.h"
#include "tools/sitelist/cli/exit_status.h"
#include "tools/sitelist/generator/manual_page.h"
#include "tools/sitelist/generator/pages.h"
#include "tools/sitelist/generator/roff.h"

namespace tool {
namespace {

constexpr std::size_t c_programWidth = sizeof "sitelist" - 1;

// Returns macros, for example "Fl \-verbose", "Fl \-agent\-dir Ar DIR" or "Ar FILE".
std::string named(const OptionInfo& option, const std::string& name) {
  const std::string flag = name.empty() ? "" : "Fl " + roffLiteral(name.substr(1));
  const std::string value = option.valueName.empty() ? "" : "Ar " + roffLiteral(option.valueName);
  return flag + (flag.empty() || value.empty() ? "" : " ") + value;
}

bool isAnswer(const OptionInfo& option) {
  return option.names.back() == "--help" || option.names.back() == "--version";
}

void synopsis(ManualPage& page, const std::vector<OptionInfo>& options) {
  for (const OptionInfo& option : options) {
    const bool isArgument = option.names.empty();
    if (!isArgument && isAnswer(option)) continue;
    const std::string macros = named(option, isArgument ? "" : option.names.back());
    page.macro((option.isRequired ? "." : ".Op ") + macros +
               (option.isRepeatable && isArgument ? " ..." : ""));
    if (option.isRepeatable && !isArgument) page.macro("\\&...");
  }
}

std::string sentence(const std::string& text) {
  const std::string line = unbroken(text);
  return line.empty() || line.back() == '.' ? line : line + '.';
}

std::string choiceText(const OptionInfo& option) {
  std::string text;
  for (const std::string& choice : option.choices) {
    if (option.help.find(choice) != std::string::npos) continue;
    text += (text.empty() ? " One of `" : ", `") + choice + '`';
  }
  return text.empty() ? "" : text + '.';
}

void list(ManualPage& page, const std::vector<OptionInfo>& options, bool withAnswers) {
  for (const OptionInfo& option : options) {
    std::string head;
    for (const std::string& name : option.names) {
      if (isAnswer(option) && !withAnswers) continue;
      head += (head.empty() ? "" : " , ") + named(option, name);
    }
    if (option.names.empty()) head = named(option, "");
    if (!head.empty()) page.item(head, sentence(option.help) + choiceText(option));
  }
}

bool hasItems(const CommandInfo& command) {
  for (const OptionInfo& option : command.options) {
    if (!isAnswer(option)) return true;
  }
  return !command.arguments.empty();
}

void command(ManualPage& page, const CommandInfo& info, const std::string& path) {
  page.subsection(path);
  // Options that do not fit into the first line are placed below the first option.
  page.macro(".Bl -hang -width " + std::to_string(c_programWidth + path.size()) + "n -compact");
  page.macro(".It Nm Cm " + roffLiteral(path));
  synopsis(page, info.options);
  synopsis(page, info.arguments);
  if (!info.commands.empty() && info.arguments.empty()) page.macro(".Ar COMMAND");
  page.macro(".El");
  page.paragraph(sentence(info.description));
  if (hasItems(info)) {
    page.beginList();
    list(page, info.arguments, false);
    list(page, info.options, false);
    page.endList();
  }
  std::vector<HelpBlock> notes = helpBlocks(info.footer);
  if (!notes.empty()) notes.front().isApart = true;
  page.help(notes);
  for (const CommandInfo& below : info.commands) command(page, below, path + ' ' + below.name);
}

void exitStatus(ManualPage& page, const StatusTable& statuses) {
  for (const HelpBlock& block : helpBlocks(c_exitStatusHelp)) {
    if (block.kind == HelpBlock::Kind::Definitions) page.definitions(block.definitions);
  }
  page.paragraph(
      "Every command can exit with 70. This status reports a fault of the tool itself, or that "
      "there is not enough memory. If a signal ends the tool, a shell reports 128 plus the number "
      "of the signal, for example 130 after Ctrl-C.");
  page.subsection("Statuses of each command");
  page.paragraph(
      "A command exits only with the statuses that have an x. Every command that prints data exits "
      "with 4 if standard output cannot be written.");
  page.macro(".Pp");
  page.literal(statuses.lines);
  page.subsection("Reasons for a status");
  page.paragraph(
      "The first list of this section has the reasons that are common to all commands. Single "
      "commands have these reasons:");
  page.macro(".Pp");
  page.definitions(statuses.meanings);
}

void files(ManualPage& page) {
  const std::string directory = host::AgentSettings().dataDirectory;
  page.beginList();
  const auto file = [&](const std::string& name, const std::string& what) {
    page.item("Pa " + roffLiteral(directory + name), what);
  };
  file("/agent.toml", "The settings of the agent.");
  file("/etc/SiteList.xml", "The agent's own list. The key files are in the same directory.");
  file("/ServerSiteList.xml", "The server list, which `sitelist server-list` stores.");
  file("/mesh/SiteList.xml", "The mesh copy, the list for the mesh service.");
  file("/locks", "The lock files of the processes of the agent.");
  file("/keystore", "The password key and the server key.");
  page.endList();
  page.paragraph(
      "With --agent-dir, these files are below that directory. The setting `mesh.site_list_path` "
      "may place the mesh copy elsewhere.");
}

std::string withSmallLetter(std::string text) {
  text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
  return text.back() == '.' ? text.substr(0, text.size() - 1) : text;
}

}  // namespace

std::string toolPage(const CommandInfo& program, const StatusTable& statuses,
                     const std::string& date) {
  ManualPage page(program.name, 1, date, withSmallLetter(program.description));
  page.section("SYNOPSIS");
  page.macro(".Nm");
  synopsis(page, program.options);
  page.macro(".Ar COMMAND");
  page.macro(".Op Ar ARGUMENT ...");
  page.macro(".Nm");
  page.macro(".Op Ar COMMAND");
  page.macro(".Fl \\-help");

  page.section("DESCRIPTION");
  page.paragraph(
      "A site list is an XML document. It tells the agent of an endpoint which management server, "
      "repositories and proxy to use. `" +
      program.name +
      "` prints, checks and compares site lists. It also edits the agent's own list and other "
      "lists.");
  page.paragraph(
      "Data goes to standard output and messages go to standard error. Control characters of a "
      "document are escaped, and passwords are masked.");
  page.paragraph(
      "A file that is read may be `-`, which means standard input, or a pipe such as `<(COMMAND)` "
      "of "
      "a shell. Standard input can be read only once. Messages call it \"standard input\". The "
      "results of `merge` and `rewrite` can go to standard output; that of `edit --file -` always "
      "does. A directory cannot be `-`. `./-` is a file with the name `-`. A list from standard "
      "input or a pipe has no key files, so one whose server has a version cannot be imported, "
      "installed or used by `modify`.");

  page.section("OPTIONS");
  page.macro("These options may be given before or after the command:");
  page.beginList();
  list(page, program.options, true);
  page.endList();

  page.section("COMMANDS");
  for (const CommandInfo& info : program.commands) command(page, info, info.name);

  page.section("ENVIRONMENT");
  page.beginList();
  page.item(
      "Ev NO_COLOR",
      "If this is set and not empty, tables have no colours unless `--color always` is given.");
  page.item(
      "Ev SITELIST_AGENT_DIR",
      "The data directory of the agent if `--agent-dir` is not given. An empty value counts as not "
      "set.");
  page.item(
      "Ev TMPDIR",
      "The directory of temporary files. The default is `/tmp`. A list from standard input or a "
      "pipe, a list on standard output and most dry runs need it. Other commands that read lists "
      "from files do not. The temporary files are removed at the end, also after a signal. The "
      "next command that needs the directory removes the files of processes that were killed.");
  page.endList();

  page.section("FILES");
  files(page);
  page.section("EXIT STATUS");
  exitStatus(page, statuses);
  page.section("SEE ALSO");
  page.macro(".Xr agent.toml 5 ,");
  page.macro(".Xr sitelist.json 5");
  return page.source();
}

}  // namespace tool
