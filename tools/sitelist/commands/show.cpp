#include <algorithm>
#include <iostream>
#include <memory>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/lost_passwords.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/table.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/fleet/many_lists.h"
#include "tools/sitelist/model/root.h"
#include "tools/sitelist/model/selection.h"
#include "tools/sitelist/model/site_report.h"

namespace tool {
namespace {

using sitehlp::tag_Site;

struct ShowOptions {
  ListArguments lists;
  std::string columnList;
  std::vector<std::string> columns;  // the words of columnList
  Selection selection;
  bool wide = false;
  bool showSecrets = false;
};

bool isProxy(const tag_Site* site) { return site->eSiteKind == sitehlp::SITE_KIND_PROXY; }

std::string upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
  return text;
}

void printTable(std::ostream& out, const Screen& screen, const ShowOptions& options,
                const std::vector<const tag_Site*>& sites) {
  const std::vector<std::string>& columns = options.columns;
  std::vector<std::wstring> headings;
  for (const std::string& column : columns) headings.push_back(wide(upper(column)));
  Table table(headings);
  for (const tag_Site* site : sites) {
    std::vector<std::wstring> cells;
    for (const std::string& column : columns) {
      cells.push_back(cellOf(*site, column, options.showSecrets));
    }
    table.add(std::move(cells), site->bEnabled || isProxy(site) ? Style::Plain : Style::Dim);
  }
  Screen wanted = screen;
  if (options.wide) wanted.columns = 0;
  if (!sites.empty()) table.print(out, wanted);
  if (std::find(columns.begin(), columns.end(), "address") != columns.end() &&
      std::any_of(sites.begin(), sites.end(),
                  [](const tag_Site* site) { return hasSecurePort(*site); })) {
    out << "\nA port in brackets is the one for secure connections.\n";
  }
}

using SiteSequence = std::vector<const tag_Site*>;

// Returns the first proxy.
SiteSequence::iterator moveProxiesToEnd(SiteSequence& sites) {
  return std::stable_partition(sites.begin(), sites.end(),
                               [](const auto* site) { return !isProxy(site); });
}

// With given columns, every record is a row. Otherwise each proxy is a separate block, because it
// has few fields in common with sites.
void printForPeople(std::ostream& out, const Screen& screen, ShowOptions options,
                    const SiteList& list) {
  std::vector<const tag_Site*> sites = select(list.sites.get(), options.selection);
  if (options.selection.sort.empty()) sortBySearchOrder(sites);
  const auto firstProxy = moveProxiesToEnd(sites);
  if (!options.columns.empty()) {
    printTable(out, screen, options, sites);
    return;
  }
  const std::vector<const tag_Site*> proxies(firstProxy, sites.end());
  sites.erase(firstProxy, sites.end());
  options.columns = {"order", "kind", "type", "name", "address", "path", "state"};
  printTable(out, screen, options, sites);
  bool isFirst = sites.empty();
  for (const tag_Site* proxy : proxies) {
    out << (isFirst ? "" : "\n");
    printProxy(out, proxy->proxy, options.showSecrets);
    isFirst = false;
  }
}

struct Counts {
  std::size_t read = 0;
  std::size_t selected = 0;
};

// Returns what the formats for programs print of a site: the requested columns, or all fields. A
// column that the site does not have is omitted.
Record rowOf(const tag_Site& site, const ShowOptions& options) {
  Record fields = recordOf(site, options.showSecrets);
  if (options.columns.empty()) return fields;
  Record row;
  for (const std::string& column : options.columns) {
    if (find(row, column)) continue;
    if (const Scalar* const value = find(fields, column)) {
      row.emplace_back(column, *value);
    } else if (isTableColumn(column)) {
      row.emplace_back(column, narrow(cellOf(site, column, options.showSecrets)));
    }
  }
  return row;
}

// Reads the sites in the order of the list. Each is released before the next one is read.
Counts readInPassing(SiteList& list, const ShowOptions& options, RowWriter& rows) {
  Counts counts;
  list.result =
      sitehlp::CSitesHelper::ReadListContents(wide(list.path), list, [&](tag_Site* taken) {
        const Sites site(taken);
        ++counts.read;
        if (!isSelected(*site, options.selection)) return;
        ++counts.selected;
        rows.add(rowOf(*site, options));
      });
  return counts;
}

Counts readAll(SiteList& list, const ShowOptions& options, RowWriter& rows) {
  list = readSiteList(list.path);
  const std::vector<const tag_Site*> sites = select(list.sites.get(), options.selection);
  if (rows.isNeeded()) {
    for (const tag_Site* site : sites) rows.add(rowOf(*site, options));
  }
  return {list.sites ? 1U : 0U, sites.size()};
}

std::vector<std::string> split(const std::string& list) {
  std::vector<std::string> parts;
  for (std::size_t at = 0; at < list.size();) {
    const std::size_t end = std::min(list.find(',', at), list.size());
    parts.push_back(list.substr(at, end - at));
    at = end + 1;
  }
  return parts;
}

// A column of CSV must have a name of its own.
std::vector<std::string> eachOnce(const std::vector<std::string>& names) {
  std::vector<std::string> found;
  for (const std::string& name : names) {
    if (std::find(found.begin(), found.end(), name) == found.end()) found.push_back(name);
  }
  return found;
}

// Adds the rows of one of several lists. A table for people has them in search order.
void readRows(const GivenList& given, const ShowOptions& options, bool isForPeople,
              ListRows& rows) {
  const auto addRow = [&](const tag_Site& site) {
    rows.add(rowOf(site, options), site.bEnabled || isProxy(&site) ? Style::Plain : Style::Dim);
  };
  SiteList list;
  if (options.selection.sort.empty() && !isForPeople) {
    list.result =
        sitehlp::CSitesHelper::ReadListContents(wide(given.path), list, [&](tag_Site* taken) {
          const Sites site(taken);
          if (isSelected(*site, options.selection)) addRow(*site);
        });
  } else {
    list = readSiteList(given.path);
    std::vector<const tag_Site*> sites = select(list.sites.get(), options.selection);
    if (options.selection.sort.empty()) sortBySearchOrder(sites);
    if (isForPeople) moveProxiesToEnd(sites);
    for (const tag_Site* site : sites) addRow(*site);
  }
  if (list.result != 0) throw libraryFailure(given.path, list.result);
  requireSiteList(given.path);
  rows.countPasswords(takeUnreadPasswords());
}

int showMany(Context& context, ShowOptions options) {
  ManyLists many;
  many.layout.rowsName = "sites";
  many.layout.rowName = "site";
  many.layout.columns = options.columns.empty() ? siteFieldNames() : eachOnce(options.columns);
  if (options.columns.empty() && formatOf(context) == Format::Table) {
    options.columns = {"order", "kind", "name", "address", "state"};
  }
  many.layout.tableColumns = eachOnce(options.columns);
  many.isWide = options.wide;
  many.needsRow = true;
  many.isSecret = options.showSecrets;
  many.warn = warnOfUnreadPasswordsInLists;
  const bool isForPeople = formatOf(context) == Format::Table;
  many.read = [options, isForPeople](const GivenList& list, ListRows& rows) {
    readRows(list, options, isForPeople, rows);
    return exitSuccess;
  };
  serveDetachedAgent(context);
  return readManyLists(context, options.lists, many);
}

int show(Context& context, ShowOptions options) {
  options.columns = split(options.columnList);
  for (const std::string& column : options.columns) requireColumn(column);
  requireFilterKeys(options.selection);
  if (areMany(options.lists)) return showMany(context, std::move(options));
  const AgentForReading agent(context, options.lists.only());
  const Format format = formatOf(context);
  Report report;
  report.rowsName = "sites";
  report.rowName = "site";
  report.columns = options.columns.empty() ? siteFieldNames() : eachOnce(options.columns);
  RowWriter rows(format, report);
  const auto list = std::make_shared<SiteList>();
  list->path = agent.path();
  const bool needsAll = format == Format::Table || !options.selection.sort.empty();
  const Counts counts =
      needsAll ? readAll(*list, options, rows) : readInPassing(*list, options, rows);
  if (list->result == 0) requireSiteList(agent.path());
  report.facts = listFacts(*list);
  report.facts.emplace_back("result", std::int64_t{list->result});
  report.table = [list, options](std::ostream& out, const Screen& screen) {
    printForPeople(out, screen, options, *list);
  };
  context.report = std::move(report);
  if (list->result != 0) throw libraryFailure(agent.path(), list->result);
  warnOfUnreadPasswords(agent.path(), options.lists.only().empty());
  if (counts.selected != 0) return exitSuccess;
  std::cerr << "sitelist: " << shown(agent.path()) << ": "
            << (counts.read != 0 ? "no site matches" : "the list has no sites") << '\n';
  return exitNegative;
}

}  // namespace

void addShow(Command& app, Context& context) {
  Command command =
      app.add_subcommand("show", "Print the sites in search order, then the proxy settings");
  const auto options = std::make_shared<ShowOptions>();
  addLists(command, options->lists);
  command
      .add_option("--columns", options->columnList,
                  "Columns in every format, separated by commas: order, kind,\ntype, name, "
                  "address, path, state, or any field of the\nJSON form")
      .type_name("LIST")
      .not_empty()
      .suggests(columnNames)
      .completes(Completion::List);
  command
      .add_option("--sort", options->selection.sort,
                  "Sort by this column; -COLUMN sorts in descending order")
      .type_name("COLUMN")
      .not_empty()
      .suggests(columnNames);
  command
      .add_repeated("--filter", options->selection.filters,
                    "Only sites whose kind, type or name matches; * matches any\n"
                    "characters and ? matches one. If PATTERN begins with\n"
                    "kind=, type= or name=, only that field is compared. This\n"
                    "option may be repeated. All patterns must match.")
      .type_name("PATTERN");
  command.add_flag("--wide", options->wide, "Do not cut columns to fit the terminal");
  command.add_flag("--show-secrets", options->showSecrets,
                   "Print clear passwords instead of ********");
  command.footer(
      "Without --columns, the formats for programs have all fields of all records.\n"
      "They keep the order of the list unless --sort is given. Find a column of CSV by\n"
      "its name: a later version may have other columns before it. --columns fixes the\n"
      "order of the columns.\n"
      "\n" +
      std::string(c_manyListsHelp) +
      "--sort sorts the sites of each list.\n"
      "\n"
      "Examples:\n"
      "  sitelist show\n"
      "  sitelist show incoming/SiteList.xml\n"
      "  sitelist show --filter kind=http --columns name,server --sort name\n"
      "  sitelist show --format jsonl fleet/\n"
      "  sitelist show --columns name,address --format csv\n"
      "  sitelist show --json | jq '.sites[] | select(.enabled).name'\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return show(context, *options); };
  });
}

}  // namespace tool
