#include <memory>
#include <ostream>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/model/root.h"
#include "tools/sitelist/model/site_report.h"

namespace tool {
namespace {

int versions(Context& context, const std::string& file) {
  const AgentForReading agent(context, file);
  const std::wstring path = wide(agent.path());
  sitehlp::CSitesHelper helper(true);
  SiteList list;
  list.path = agent.path();
  const int result =
      helper.GetSitelistVersions(path, list.globalVersion, list.localVersion, list.type);
  if (result != 0) throw libraryFailure(agent.path(), result);
  requireSiteList(agent.path());
  std::wstring fipsMode;
  if (helper.GetSitelistFipsMode(path, fipsMode) == 0) list.fipsMode = fipsMode;
  Report report;
  report.facts = listFacts(list);
  const std::string mode = list.fipsMode ? shown(fipsMode) : "none";
  report.table = [facts = report.facts, mode](std::ostream& out, const Screen&) {
    const auto text = [&](const char* name) { return shownText(facts, name); };
    out << "global version  " << text("globalVersion") << "\nlocal version   "
        << text("localVersion") << "\ntype            " << text("type") << "\nFIPS mode       "
        << mode << '\n';
  };
  context.report = std::move(report);
  return exitSuccess;
}

}  // namespace

void addVersions(Command& app, Context& context) {
  Command command = app.add_subcommand("versions", "Print a list's versions, type and FIPS mode");
  const auto file = std::make_shared<std::string>();
  command.add_option("FILE", *file, "A site list (default: the agent's own list)").type_name("");
  command.footer(
      "Examples:\n"
      "  sitelist versions\n"
      "  sitelist versions incoming/SiteList.xml\n");
  command.callback(
      [&context, file] { context.action = [&context, file] { return versions(context, *file); }; });
}

}  // namespace tool
