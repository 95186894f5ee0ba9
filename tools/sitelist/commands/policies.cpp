#include <iostream>
#include <memory>
#include <set>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/draft.h"
#include "tools/sitelist/agent/password_check.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/diff/diff.h"
#include "tools/sitelist/model/root.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

struct PoliciesOptions {
  std::string file;
  std::string name;
  std::string value;
  std::vector<std::string> names;  // to remove
  bool dryRun = false;
  bool allowLostPasswords = false;
};

int listPolicies(Context& context, const PoliciesOptions& options) {
  const AgentForReading agent(context, options.file);
  const SiteList sites = readSiteList(agent.path());
  if (sites.result == 0) requireSiteList(agent.path());
  Report report;
  report.facts = {{"file", reportedName(sites.path)}};
  report.rowsName = "policies";
  report.rowName = "policy";
  report.columns = {"name", "value"};
  for (const auto& [name, value] : sites.policySettings) {
    report.rows.push_back({{"name", narrow(name)}, {"value", narrow(value)}});
  }
  report.table = [rows = report.rows](std::ostream& out, const Screen&) {
    for (const Record& row : rows) {
      out << shown(textOf(row[0].second)) << " = " << shown(textOf(row[1].second)) << '\n';
    }
  };
  context.report = std::move(report);
  if (sites.result != 0) throw libraryFailure(agent.path(), sites.result);
  if (!sites.policySettings.empty()) return exitSuccess;
  std::cerr << "sitelist: " << shown(agent.path()) << ": the list has no policy settings\n";
  return exitNegative;
}

// Changes the settings, and returns what it did.
using Change = std::string (*)(SiteList&, const PoliciesOptions&);

std::string setPolicy(SiteList& list, const PoliciesOptions& options) {
  list.policySettings[wide(options.name)] = wide(options.value);
  return "set policy setting \"" + shown(options.name) + "\" to \"" + shown(options.value) + "\"";
}

std::string unsetPolicies(SiteList& list, const PoliciesOptions& options) {
  const std::set<std::string> names(options.names.begin(), options.names.end());
  std::string text;
  for (const std::string& name : names) {
    const auto setting = list.policySettings.find(wide(name));
    if (setting == list.policySettings.end()) throw missingPolicy(list, name);
    list.policySettings.erase(setting);
    text.append(text.empty() ? "\"" : ", \"").append(shown(name)).append("\"");
  }
  return (names.size() == 1 ? "removed policy setting " : "removed policy settings ") + text;
}

int previewPolicies(Context& context, const PoliciesOptions& options, Change change) {
  serveForPreview(context);
  const std::string path = ownListPath(context);
  PasswordCheck passwords(context, options.allowLostPasswords);
  passwords.requireEncryptable(path);
  const SiteList before = readWholeSiteList(path);
  SiteList after = readWholeSiteList(path);
  change(after, options);
  const Diff diff(before, asWritten(after), false);
  passwords.warn(true);
  context.report = diff.report("What would change in " + shown(path), "Nothing was written.");
  return exitSuccess;
}

int changePolicies(Context& context, const PoliciesOptions& options, Change change) {
  // The parser gives a surplus argument to the command above, as its FILE.
  if (!options.file.empty()) {
    throw Failure(exitUsage, "unexpected argument \"" + shown(options.file) + "\"",
                  "omit it; `sitelist " + context.command + "` changes the agent's own list");
  }
  if (options.dryRun) return previewPolicies(context, options, change);
  const ListLock lock(context, "", ListUse::Change);
  const std::string path = ownListPath(context);
  PasswordCheck passwords(context, options.allowLostPasswords);
  passwords.requireEncryptable(path);
  SiteList sites = readWholeSiteList(path);
  const std::string done = change(sites, options);
  writeSiteList(sites, path);
  passwords.warn(false);
  std::cerr << "sitelist: " << shown(path) << ": " << done << '\n';
  return exitSuccess;
}

Command addChange(Command& policies, PoliciesOptions& options, const char* name,
                  const char* description) {
  Command command = policies.add_subcommand(name, description);
  command.fallthrough();
  command.add_flag("--dry-run", options.dryRun, "Show the changes, and write nothing");
  addAllowLostPasswords(command, options.allowLostPasswords);
  return command;
}

}  // namespace

void addPolicies(Command& app, Context& context) {
  Command command =
      app.add_subcommand("policies", "Print the policy settings of a list, or change them");
  const auto options = std::make_shared<PoliciesOptions>();
  command
      .add_option("FILE", options->file,
                  "A site list (default: the agent's own list); write\n./set for a file named set, "
                  "./unset for unset")
      .type_name("");
  Command setCommand =
      addChange(command, *options, "set", "Set a policy setting in the agent's own list");
  setCommand.add_option("NAME", options->name, "The name of the setting")
      .required()
      .type_name("")
      .not_empty();
  setCommand.add_option("VALUE", options->value, "The new value").required().type_name("");
  setCommand.footer("Example:\n  sitelist policies set OverwriteClientSites 0\n");
  Command unsetCommand =
      addChange(command, *options, "unset", "Remove policy settings from the agent's own list");
  unsetCommand.add_option("NAME", options->names, "The names of the settings")
      .required()
      .type_name("")
      .not_empty();
  unsetCommand.footer(
      "If the list does not have one of the settings, the command removes none of them\n"
      "and exits with status 7.\n"
      "\n"
      "Example:\n"
      "  sitelist policies unset OverwriteClientSites AskIntervalMinutes\n");
  command.footer(
      "Examples:\n"
      "  sitelist policies\n"
      "  sitelist policies incoming/SiteList.xml\n"
      "  sitelist policies set OverwriteClientSites 0\n"
      "  sitelist policies unset OverwriteClientSites\n");
  command.callback([&context, options, setCommand, unsetCommand] {
    const Change change = setCommand.parsed()     ? setPolicy
                          : unsetCommand.parsed() ? unsetPolicies
                                                  : nullptr;
    context.action = [&context, options, change] {
      return change ? changePolicies(context, *options, change) : listPolicies(context, *options);
    };
  });
}

}  // namespace tool
