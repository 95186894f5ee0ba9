#include <algorithm>
#include <memory>
#include <ostream>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/progress.h"
#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/fleet/difference.h"
#include "tools/sitelist/fleet/fleet_counts.h"
#include "tools/sitelist/fleet/in_order.h"
#include "tools/sitelist/fleet/many_lists.h"
#include "tools/sitelist/fleet/summary_table.h"

namespace tool {
namespace {

struct SummaryOptions {
  ListArguments lists;
  bool unmanaged = false;
};

// The first pass: counts all lists and finds out which are alike. Returns the exit status.
int countLists(const Context& context, const std::vector<GivenList>& lists,
               const SummaryOptions& options, FleetCounts& counts, AlikeGroups& alike) {
  Progress progress(wantsProgress(context), lists.size(), "lists");
  int status = exitSuccess;
  InOrder<ListSummary> inOrder(lists.size(), jobsOf(options.lists), [&](std::size_t index) {
    clearLogRecords();
    ListSummary summary = summarise(lists[index], !options.unmanaged);
    clearLogRecords();
    return summary;
  });
  inOrder.run([&](std::size_t index, const ListSummary& list) {
    counts.add(list);
    if (list.isRead()) alike.add(index, list.digest);
    status = std::max(status, list.status);
    progress.show(index + 1);
    return true;
  });
  return status;
}

// The second pass: compares one list of each group with the most frequent one.
void compareLists(const Context& context, const std::vector<GivenList>& lists,
                  const SummaryOptions& options, AlikeGroups& alike) {
  const AlikeLists* const most = alike.mostFrequent();
  if (!most) return;
  const SiteList base = readSiteList(lists[most->first].path);
  std::vector<AlikeLists>& groups = alike.groups();
  Progress progress(wantsProgress(context), groups.size(), "lists compared");
  InOrder<std::size_t> inOrder(groups.size(), jobsOf(options.lists), [&](std::size_t index) {
    const std::size_t count = differencesBetween(base, lists[groups[index].first]);
    clearLogRecords();
    return count;
  });
  inOrder.run([&](std::size_t index, std::size_t count) {
    groups[index].differences = count;
    progress.show(index + 1);
    return true;
  });
}

RowGroup mostDifferent(const std::vector<GivenList>& lists, const AlikeGroups& alike) {
  constexpr std::size_t c_most = 10;
  RowGroup group = {"mostDifferent", "different", {}};
  for (const std::size_t index : alike.mostDifferent(c_most)) {
    group.rows.push_back({{"section", "different"},
                          {"file", reportedName(lists[index].path)},
                          {"differences", static_cast<std::int64_t>(alike.differencesOf(index))}});
  }
  return group;
}

Record factsOf(const std::vector<GivenList>& lists, const FleetCounts& counts,
               const AlikeGroups& alike) {
  const auto number = [](std::size_t count) { return static_cast<std::int64_t>(count); };
  const AlikeLists* const most = alike.mostFrequent();
  return {{"listCount", number(counts.lists())},
          {"readCount", number(counts.lists() - counts.failed())},
          {"failedCount", number(counts.failed())},
          {"mostFrequent", most ? Scalar(reportedName(lists[most->first].path)) : Scalar()},
          {"mostFrequentCount", number(most ? most->count : 0)}};
}

int summary(Context& context, const SummaryOptions& options) {
  serveNoAgent(context);
  jobsOf(options.lists);  // a wrong number is found before anything is read
  const GivenLists given(options.lists.files);
  FleetCounts counts;
  AlikeGroups alike;
  const int status = countLists(context, given.all(), options, counts, alike);
  compareLists(context, given.all(), options, alike);
  Report report;
  report.facts = factsOf(given.all(), counts, alike);
  report.columns = {"section",      "globalVersion", "localVersions", "server",
                    "rule",         "severity",      "faults",        "month",
                    "certificates", "file",          "differences",   "lists"};
  report.groups = counts.groups();
  report.groups.push_back(mostDifferent(given.all(), alike));
  report.table = [facts = report.facts, groups = report.groups](std::ostream& out,
                                                                const Screen& screen) {
    printSummary(out, screen, facts, groups);
  };
  context.report = std::move(report);
  return given.all().empty() ? exitNegative : status;
}

}  // namespace

void addSummary(Command& app, Context& context) {
  Command command =
      app.add_subcommand("summary", "Count versions, servers and faults in many lists");
  const auto options = std::make_shared<SummaryOptions>();
  command
      .add_option("FILE", options->lists.files,
                  "Site lists, or directories in which all files\n\"SiteList.xml\" are read; - "
                  "means standard input")
      .required()
      .type_name("")
      .completes(Completion::File);
  addJobs(command, options->lists.jobs);
  command.add_flag("--unmanaged", options->unmanaged,
                   "Count the faults by the rules for an unmanaged agent");
  command.footer(
      "Counts the lists by global version, by management server, by fault (see\n"
      "`sitelist validate`), and by the month in which a certificate expires. A table\n"
      "shows only the most frequent values. The other formats have all values.\n"
      "\n"
      "Lists are alike if they differ at most in their versions and passwords. Lists\n"
      "that are alike form a group. The most frequent list is the first list of the\n"
      "largest group. The ten lists that differ most from it come last, with the number\n"
      "of changes that `sitelist diff` would print. Changes of versions and passwords\n"
      "are not counted.\n"
      "\n"
      "The command needs no agent. The exit status is 0 if all lists can be read, and 1\n"
      "if no list is found. Otherwise it is the highest status of a list that cannot be\n"
      "read.\n"
      "\n"
      "Examples:\n"
      "  sitelist summary fleet/\n"
      "  sitelist summary --format json fleet/ | jq '.byVersion'\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return summary(context, *options); };
  });
}

}  // namespace tool
