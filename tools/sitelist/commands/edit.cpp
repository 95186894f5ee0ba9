#include <memory>
#include <set>
#include <utility>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/change_watch.h"
#include "tools/sitelist/agent/lost_passwords.h"
#include "tools/sitelist/agent/password.h"
#include "tools/sitelist/agent/password_check.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/edit/document_fields.h"
#include "tools/sitelist/edit/operations.h"
#include "tools/sitelist/edit/session.h"
#include "tools/sitelist/model/kinds.h"

namespace tool {
namespace {

struct EditArguments {
  EditOptions list;
  SiteName site;
  std::vector<std::string> assignments;
  std::string newName;
  std::string place;
  std::string other;
  bool isPasswordFromInput = false;
  std::string passwordFile;
  std::string passwordField = "password";
};

using Edit = std::function<Outcome(ListEditor&)>;
using Action = std::function<int(Context&, const EditArguments&)>;

// the subcommands with their actions
using Edits = std::vector<std::pair<Command, Action>>;

Command addSubcommand(Command& edit, Edits& edits, const std::string& name,
                      const std::string& description, Action action) {
  Command command = edit.add_subcommand(name, description);
  command.fallthrough();
  edits.emplace_back(command, std::move(action));
  return command;
}

void addName(Command& command, EditArguments& options) {
  command.add_option("NAME", options.site.name, "The name of the site")
      .required()
      .type_name("")
      .completes(Completion::Site);
}

void addKind(Command& command, EditArguments& options) {
  command
      .add_option("--kind", options.site.kind,
                  "The site's kind, if several sites have this name:\n" + kindNames())
      .type_name("KIND")
      .choices(kinds());
}

// Returns the names of the fields that can be set, of all kinds. They are the password fields, or
// all others with "=" at the end.
std::vector<std::string> suggestedFields(bool isPassword) {
  std::set<std::string> names;
  for (const std::string& kind : kinds()) {
    for (const DocumentField& field : findKind(kind)->fields) {
      if (!field.name || (field.form == FieldForm::Password) != isPassword) continue;
      if (field.name == std::string("name")) continue;  // `rename` sets it
      names.insert(field.name + std::string(isPassword ? "" : "="));
    }
  }
  return {names.begin(), names.end()};
}

void addValues(Command& command, EditArguments& options) {
  command.takes_password();
  command
      .add_option("FIELD=VALUE", options.assignments,
                  "A field, named as in `sitelist show --json`, and its value")
      .type_name("")
      .suggests([] { return suggestedFields(false); });
  command.add_flag("--password-stdin", options.isPasswordFromInput,
                   "Set the password to the first line of standard input");
  command
      .add_option("--password-file", options.passwordFile,
                  "Set the password to the first line of the file; - means\nstandard input")
      .type_name("FILE")
      .not_empty()
      .completes(Completion::File);
  command
      .add_option("--password-field", options.passwordField,
                  "The field that receives the password\n(default: password)")
      .type_name("FIELD")
      .suggests([] { return suggestedFields(true); });
}

int setEnabled(Context& context, const EditArguments& options, bool isEnabled) {
  return performEdit(context, options.list,
                     [&](ListEditor& list) { return enableSite(list, options.site, isEnabled); });
}

using EditValues = Outcome (*)(ListEditor&, const SiteName&, const std::vector<std::string>&,
                               const GivenPassword&);

int editValues(Context& context, const EditArguments& options, EditValues edit) {
  if (!options.isPasswordFromInput && options.passwordFile.empty()) {
    return performEdit(context, options.list, [&](ListEditor& list) {
      return edit(list, options.site, options.assignments, {});
    });
  }
  if (options.isPasswordFromInput && !options.passwordFile.empty()) {
    throw Failure(exitUsage, "--password-stdin and --password-file cannot be used together",
                  "give only one of them");
  }
  Password password;
  password.read(options.passwordFile);
  // The password must be encrypted with the agent's real password key. If the key file is missing,
  // a detached agent would use a random key.
  serveAgent(context);
  const PasswordCheck passwords(context, options.list.allowLostPasswords);
  passwords.requireKeyOfOwnList();
  if (options.list.dryRun || !isOwnList(context, options.list.file)) requirePasswordKey(context);
  const ChangeWatch watch(context, {passwordKeyPath(context.agentDirectory)});
  const std::wstring protectedText = protect(context, password);
  const int status = performEdit(context, options.list, [&](ListEditor& list) {
    return edit(list, options.site, options.assignments,
                {options.passwordField, &password.text(), &protectedText});
  });
  passwords.warn(options.list.dryRun);
  return status;
}

int setValues(Context& context, const EditArguments& options) {
  if (options.assignments.empty() && !options.isPasswordFromInput && options.passwordFile.empty()) {
    throw Failure(exitUsage, "there is nothing to set", "give FIELD=VALUE, or a password");
  }
  return editValues(context, options, setFields);
}

int moveInOrder(Context& context, const EditArguments& options) {
  const bool isRelative = options.place == "before" || options.place == "after";
  if (isRelative && options.other.empty()) {
    throw Failure(exitUsage, "the site to move " + options.place + " is missing",
                  "add its name, as in `sitelist edit move Depot " + options.place + " Offices`");
  }
  if (!isRelative && !options.other.empty()) {
    throw Failure(exitUsage, "PLACE \"" + shown(options.place) + "\" does not take OTHER",
                  "use before or after with \"" + shown(options.other) + "\", or omit it");
  }
  return performEdit(context, options.list, [&](ListEditor& list) {
    return moveSite(list, options.site, options.place, options.other);
  });
}

void addToggles(Command& edit, Edits& edits, EditArguments& options) {
  for (const bool isEnabled : {true, false}) {
    const std::string name = isEnabled ? "enable" : "disable";
    Command command = addSubcommand(edit, edits, name,
                                    isEnabled ? "Enable a site, so that the agent tries it"
                                              : "Disable a site, so that the agent does not try it",
                                    [isEnabled](Context& context, const EditArguments& given) {
                                      return setEnabled(context, given, isEnabled);
                                    });
    addName(command, options);
    addKind(command, options);
    command.footer("Example:\n  sitelist edit " + name + " Depot\n");
  }
}

void addSet(Command& edit, Edits& edits, EditArguments& options) {
  Command command = addSubcommand(edit, edits, "set", "Change fields of a site", setValues);
  addName(command, options);
  addKind(command, options);
  addValues(command, options);
  command.footer(
      "A value that is too long for its field is refused. A value is also refused if\n"
      "the field needs a number, a flag, a type or a host and the value is not one. The\n"
      "types are master, repository, mirror, fallback and remediation. A host has no\n"
      "white space. A password must not be on the command line.\n"
      "\n"
      "Fields:\n" +
      fieldHelp() +
      "\n"
      "Examples:\n"
      "  sitelist edit set Depot server=depot2.example serverPort=8080\n"
      "  sitelist edit set Depot userName=reader --password-file secret.txt\n"
      "  sitelist edit set 'Site proxy' 'exclusionList=a.example;*.b.example'\n"
      "  sitelist edit set 'Site proxy' --password-stdin \\\n"
      "      --password-field httpProxyPassword < secret.txt\n");
}

void addAdd(Command& edit, Edits& edits, EditArguments& options) {
  Command command = addSubcommand(edit, edits, "add", "Add a site",
                                  [](Context& context, const EditArguments& given) {
                                    return editValues(context, given, addSite);
                                  });
  command.add_option("KIND", options.site.kind, "The kind of the site:\n" + kindNames())
      .required()
      .type_name("")
      .choices(kinds());
  addName(command, options);
  addValues(command, options);
  command.footer(
      "By default the new site is enabled and is the last one in the search order. The\n"
      "default type is repository (master for a server). The default port is 80 (21 for\n"
      "ftp). `sitelist edit set --help` lists the fields.\n"
      "\n"
      "Examples:\n"
      "  sitelist edit add http Depot server=depot.example relativePath=pub\n"
      "  sitelist edit add unc Share server=FILES01 'shareName=Orb$' order=2\n"
      "  sitelist edit add proxy Proxy httpProxyServer=proxy.example \\\n"
      "      httpProxyPort=3128\n");
}

void addMoves(Command& edit, Edits& edits, EditArguments& options) {
  Command remove = addSubcommand(edit, edits, "remove", "Remove a site from the list",
                                 [](Context& context, const EditArguments& given) {
                                   return performEdit(context, given.list, [&](ListEditor& list) {
                                     return removeSite(list, given.site);
                                   });
                                 });
  addName(remove, options);
  addKind(remove, options);
  remove.footer("Example:\n  sitelist edit remove Depot\n");

  Command rename = addSubcommand(edit, edits, "rename", "Rename a site",
                                 [](Context& context, const EditArguments& given) {
                                   return performEdit(context, given.list, [&](ListEditor& list) {
                                     return renameSite(list, given.site, given.newName);
                                   });
                                 });
  addName(rename, options);
  rename.add_option("NEW", options.newName, "The new name").required().type_name("");
  addKind(rename, options);
  rename.footer("Example:\n  sitelist edit rename Depot 'Depot North'\n");

  Command command =
      addSubcommand(edit, edits, "move", "Move a site in the search order", moveInOrder);
  addName(command, options);
  command
      .add_option("PLACE", options.place,
                  "first, last, a position (from 1),\n\"before OTHER\" or \"after OTHER\"")
      .required()
      .type_name("")
      .suggests([] {
        return std::vector<std::string>{"first", "last", "before", "after"};
      });
  command.add_option("OTHER", options.other, "The site to move before or after")
      .type_name("")
      .completes(Completion::Site);
  addKind(command, options);
  command.footer(
      "The command redistributes the existing order numbers. As few sites as possible\n"
      "get a new number. A disabled site can be moved. A mirror, a proxy and a fallback\n"
      "without an order cannot.\n"
      "\n"
      "Examples:\n"
      "  sitelist edit move Depot first\n"
      "  sitelist edit move Depot before Offices\n");
}

void addCommonOptions(Command& command, EditOptions& options) {
  command
      .add_option("--file", options.file,
                  "The list to edit (default: the agent's own list). With -,\nread standard input "
                  "and print the edited list.")
      .type_name("FILE")
      .not_empty()
      .completes(Completion::File);
  command.add_flag("--dry-run", options.dryRun, "Show the changes, and write nothing");
  command.add_flag("--force", options.force, "Write the list although the change adds a fault");
  addAllowLostPasswords(command, options.allowLostPasswords);
}

}  // namespace

void addEdit(Command& app, Context& context) {
  Command command = app.add_subcommand("edit", "Change individual sites of a list");
  const auto options = std::make_shared<EditArguments>();
  const auto edits = std::make_shared<Edits>();
  addCommonOptions(command, options->list);
  addToggles(command, *edits, *options);
  addSet(command, *edits, *options);
  addAdd(command, *edits, *options);
  addMoves(command, *edits, *options);
  command.footer(
      "All other elements, attributes, comments and text are unchanged, including those\n"
      "that the agent does not read. A repeated edit changes nothing; a repeated remove\n"
      "exits with status 7, because the site does not exist. The versions of the list\n"
      "are unchanged. An edit of the agent's own list also writes the mesh copy and\n"
      "runs the load command. `sitelist undo` undoes such an edit.\n"
      "\n"
      "The rules of `sitelist validate` apply to the changed list, even those\n"
      "for warnings. If the change adds a fault, the edit writes nothing and exits with\n"
      "status 1. With --force it writes the list and prints the fault. The line and\n"
      "column of a fault refer to the changed list. The rules for the management\n"
      "server apply if the agent is managed.\n"
      "\n"
      "`sitelist edit COMMAND --help` describes each edit. The options of `sitelist\n"
      "edit` may be given before or after COMMAND.\n"
      "\n"
      "Examples:\n"
      "  sitelist edit disable Depot\n"
      "  sitelist edit set Depot server=depot2.example\n"
      "  sitelist edit --file lists/SiteList.xml --dry-run remove Depot\n"
      "  receive-list | sitelist edit --file - disable Depot > changed.xml\n");
  command.callback([&context, options, edits] {
    context.action = [&context, options, edits] {
      for (const auto& [edit, action] : *edits) {
        if (edit.parsed()) return action(context, *options);
      }
      throw Failure(exitUsage, "a command is required", "see `sitelist edit --help`");
    };
  });
}

}  // namespace tool
