#include <iostream>
#include <memory>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/password_check.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

struct PoliciesOptions {
  std::string file;
  std::string name;
  std::string value;
  bool allowLostPasswords = false;
};

int listPolicies(Context& context, const PoliciesOptions& options) {
  const AgentForReading agent(context, options.file);
  const SiteList sites = readSiteList(agent.path());
  Report report;
  report.facts = {{"file", narrow(wide(sites.path))}};
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

int setPolicy(Context& context, const PoliciesOptions& options) {
  const ListLock lock(context, "", ListUse::Change);
  const std::string path = ownListPath(context);
  PasswordCheck passwords(context, options.allowLostPasswords);
  passwords.requireEncryptable(path);
  SiteList sites = readWholeSiteList(path);
  sites.policySettings[wide(options.name)] = wide(options.value);
  writeSiteList(sites, path);
  passwords.warn(false);
  std::cerr << "sitelist: " << shown(path) << ": set policy setting \"" << shown(options.name)
            << "\" to \"" << shown(options.value) << "\"\n";
  return exitSuccess;
}

}  // namespace

void addPolicies(Command& app, Context& context) {
  Command command =
      app.add_subcommand("policies", "Print the policy settings of a list, or set one");
  const auto options = std::make_shared<PoliciesOptions>();
  command
      .add_option("FILE", options->file,
                  "A site list (default: the agent's own list); write\n./set for a file named set")
      .type_name("");
  Command setCommand =
      command.add_subcommand("set", "Set a policy setting in the agent's own list");
  setCommand.fallthrough();
  setCommand.add_option("NAME", options->name, "The name of the setting")
      .required()
      .type_name("")
      .not_empty();
  setCommand.add_option("VALUE", options->value, "The new value").required().type_name("");
  addAllowLostPasswords(setCommand, options->allowLostPasswords);
  setCommand.footer("Example:\n  sitelist policies set OverwriteClientSites 0\n");
  command.footer(
      "Examples:\n"
      "  sitelist policies\n"
      "  sitelist policies incoming/SiteList.xml\n"
      "  sitelist policies set OverwriteClientSites 0\n");
  command.callback([&context, options, setCommand] {
    const auto action = setCommand.parsed() ? setPolicy : listPolicies;
    context.action = [&context, options, action] { return action(context, *options); };
  });
}

}  // namespace tool
