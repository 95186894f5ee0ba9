#include <memory>
#include <ostream>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/fleet/many_lists.h"
#include "tools/sitelist/model/root.h"
#include "tools/sitelist/model/site_report.h"

namespace tool {
namespace {

SiteList readVersions(const std::string& file) {
  const std::wstring path = wide(file);
  sitehlp::CSitesHelper helper(true);
  SiteList list;
  list.path = file;
  const int result =
      helper.GetSitelistVersions(path, list.globalVersion, list.localVersion, list.type);
  if (result != 0) throw libraryFailure(file, result);
  requireSiteList(file);
  std::wstring fipsMode;
  if (helper.GetSitelistFipsMode(path, fipsMode) == 0) list.fipsMode = fipsMode;
  return list;
}

int versionsOfMany(Context& context, const ListArguments& lists) {
  ManyLists many;
  many.layout.rowsName = "lists";
  many.layout.rowName = "list";
  many.layout.columns = {"globalVersion", "localVersion", "type", "fipsMode"};
  many.layout.tableColumns = many.layout.columns;
  many.read = [](const GivenList& given, ListRows& rows) {
    Record row = listFacts(readVersions(given.path));
    row.erase(row.begin());  // the file is added to every row
    rows.add(row);
    return exitSuccess;
  };
  serveDetachedAgent(context);
  return readManyLists(context, lists, many);
}

int versions(Context& context, const ListArguments& lists) {
  if (areMany(lists)) return versionsOfMany(context, lists);
  const AgentForReading agent(context, lists.only());
  const SiteList list = readVersions(agent.path());
  Report report;
  report.facts = listFacts(list);
  const std::string mode = list.fipsMode ? shown(*list.fipsMode) : "none";
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
  const auto lists = std::make_shared<ListArguments>();
  addLists(command, *lists);
  command.footer(std::string(c_manyListsHelp) +
                 "\n"
                 "Examples:\n"
                 "  sitelist versions\n"
                 "  sitelist versions incoming/SiteList.xml\n"
                 "  sitelist versions --format csv fleet/\n");
  command.callback([&context, lists] {
    context.action = [&context, lists] { return versions(context, *lists); };
  });
}

}  // namespace tool
