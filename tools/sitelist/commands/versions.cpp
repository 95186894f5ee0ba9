#include <iostream>

#include "tools/sitelist/agent_access.h"
#include "tools/sitelist/command.h"
#include "tools/sitelist/failure.h"
#include "tools/sitelist/site_list.h"
#include "tools/sitelist/text.h"

namespace tool {
namespace {

int versions(const Context& context, const std::string& file) {
  const AgentForReading agent(context, file);
  const std::wstring path = wide(agent.path());
  sitehlp::CSitesHelper helper(true);
  std::wstring global;
  std::wstring local;
  std::wstring type;
  const int result = helper.GetSitelistVersions(path, global, local, type);
  if (result != 0) {
    throw libraryFailure(agent.path(), result);
  }
  std::wstring fipsMode;
  const bool saysFipsMode = helper.GetSitelistFipsMode(path, fipsMode) == 0;
  std::cout << "global version  " << shown(global) << "\nlocal version   " << shown(local)
            << "\ntype            " << shown(type) << "\nFIPS mode       "
            << (saysFipsMode ? shown(fipsMode) : "not said") << '\n';
  return exitSuccess;
}

}  // namespace

void addVersions(Command& app, Context& context) {
  Command command = app.add_subcommand("versions", "Print a list's versions, type and FIPS mode");
  const auto file = std::make_shared<std::string>();
  command.add_option("FILE", *file, "A site list (default: the agent's own)").type_name("");
  command.footer(
      "Examples:\n"
      "  sitelist versions\n"
      "  sitelist versions incoming/SiteList.xml\n");
  command.callback(
      [&context, file] { context.action = [&context, file] { return versions(context, *file); }; });
}

}  // namespace tool
