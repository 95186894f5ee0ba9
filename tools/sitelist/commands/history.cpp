#include "tools/sitelist/history/history.h"

#include <iostream>
#include <memory>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/cli/exit_status.h"
#include "tools/sitelist/cli/table.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

// The versions are empty if the list cannot be read.
Record rowOf(const HistoryEntry& entry) {
  std::wstring global;
  std::wstring local;
  std::wstring type;
  sitehlp::CSitesHelper(true).GetSitelistVersions(wide(entry.path), global, local, type);
  return {{"number", static_cast<std::int64_t>(entry.number)},
          {"time", entry.time},
          {"replacedBy", entry.command},
          {"globalVersion", narrow(global)},
          {"localVersion", narrow(local)},
          {"file", narrow(wide(entry.path))}};
}

int history(Context& context) {
  const AgentForReading agent(context, "");
  Report report;
  report.rowsName = "lists";
  report.rowName = "list";
  report.columns = {"number", "time", "replacedBy", "globalVersion", "localVersion", "file"};
  for (const HistoryEntry& entry : historyOf(agent.path())) report.rows.push_back(rowOf(entry));
  report.table = [rows = report.rows](std::ostream& out, const Screen& screen) {
    if (rows.empty()) return;
    Table table({L"NUMBER", L"TIME", L"REPLACED BY", L"GLOBAL VERSION", L"LOCAL VERSION"});
    for (const Record& row : rows) {
      table.add({wide(textOf(row[0].second)), wide(textOf(row[1].second)),
                 wide(textOf(row[2].second)), wide(textOf(row[3].second)),
                 wide(textOf(row[4].second))});
    }
    table.print(out, screen);
  };
  const bool isEmpty = report.rows.empty();
  context.report = std::move(report);
  if (!isEmpty) return exitSuccess;
  std::cerr << "sitelist: " << shown(agent.path()) << ": the history is empty\n";
  return exitNegative;
}

}  // namespace

void addHistory(Command& app, Context& context) {
  Command command = app.add_subcommand("history", "Print the lists that commands have replaced");
  command.footer(
      "A command that changes the agent's own list puts the old list into the history.\n"
      "The directory etc/history of the agent has the last 10 lists. The setting\n"
      "`history` in agent.toml changes that number.\n"
      "\n"
      "Examples:\n"
      "  sitelist history\n"
      "  sitelist diff --history 3\n"
      "  sitelist undo\n");
  command.callback([&context] { context.action = [&context] { return history(context); }; });
}

}  // namespace tool
