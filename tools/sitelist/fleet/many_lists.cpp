#include "tools/sitelist/fleet/many_lists.h"

#include <algorithm>
#include <charconv>
#include <iostream>
#include <thread>

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/progress.h"
#include "tools/sitelist/cli/screen.h"
#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/fleet/in_order.h"
#include "tools/sitelist/fleet/list_printer.h"

namespace tool {
namespace {

constexpr std::size_t c_mostJobs = 256;

// The result of one list.
struct Outcome {
  ListRows rows;
  int status;
  std::vector<LogRecord> errors;  // that were logged
};

struct Counts {
  std::size_t lists = 0;
  std::size_t failed = 0;
  std::size_t rows = 0;
  std::size_t passwords = 0;
  std::size_t listsWithPasswords = 0;
};

Outcome readOne(const ManyLists& many, const RowTarget& target, const GivenList& list) {
  Outcome outcome = {
      ListRows(many.layout, target, reportedName(list.path), wide(reportedName(shortName(list)))),
      exitSuccess,
      {}};
  const auto fail = [&outcome](const Failure& failure) {
    outcome.status = failure.status();
    outcome.rows.fail(failure);
  };
  if (list.failure && !many.takesErrors) {
    fail(*list.failure);
    return outcome;
  }
  clearLogRecords();
  try {
    outcome.status = many.read(list, outcome.rows);
    keepErrors(logRecords(), outcome.errors);
  } catch (const Failure& failure) {
    fail(failure);
  }
  clearLogRecords();
  takeUnreadPasswords();  // those of a list that failed are not reported
  return outcome;
}

void add(const Outcome& outcome, Counts& counts) {
  ++counts.lists;
  if (outcome.rows.hasFailed()) ++counts.failed;
  counts.rows += outcome.rows.count();
  counts.passwords += outcome.rows.passwords();
  if (outcome.rows.passwords() != 0) ++counts.listsWithPasswords;
}

std::string numbered(std::size_t count, const std::string& noun) {
  return withCommas(count) + " " + noun + (count == 1 ? "" : "s");
}

void printCounts(const Counts& counts) {
  std::cerr << "sitelist: " << numbered(counts.lists - counts.failed, "list") << " read";
  if (counts.failed != 0) std::cerr << ", " << withCommas(counts.failed) << " failed";
  std::cerr << '\n';
}

Record factsOf(const Counts& counts) {
  const auto number = [](std::size_t count) { return static_cast<std::int64_t>(count); };
  return {{"listCount", number(counts.lists)},
          {"readCount", number(counts.lists - counts.failed)},
          {"failedCount", number(counts.failed)},
          {"rowCount", number(counts.rows)}};
}

}  // namespace

void addJobs(Command& command, std::string& jobs) {
  command
      .add_option("--jobs", jobs,
                  "Lists that are read at the same time, from 1 to 256\n(default: the number of "
                  "processors)")
      .type_name("NUMBER")
      .not_empty();
}

void addLists(Command& command, ListArguments& arguments) {
  command
      .add_option("FILE", arguments.files,
                  "Site lists, or directories in which all files\n\"SiteList.xml\" are read "
                  "(default: the agent's own list)")
      .type_name("")
      .completes(Completion::File);
  addJobs(command, arguments.jobs);
}

bool areMany(const ListArguments& arguments) {
  jobsOf(arguments);
  const std::vector<std::string>& files = arguments.files;
  return files.size() > 1 || (files.size() == 1 && isDirectory(files.front()));
}

std::size_t jobsOf(const ListArguments& arguments) {
  if (arguments.jobs.empty()) return std::max(1U, std::thread::hardware_concurrency());
  std::size_t jobs = 0;
  const char* const end = arguments.jobs.data() + arguments.jobs.size();
  const auto [stop, error] = std::from_chars(arguments.jobs.data(), end, jobs);
  if (error == std::errc() && stop == end && jobs >= 1 && jobs <= c_mostJobs) return jobs;
  throw Failure(exitUsage,
                "--jobs: \"" + shown(arguments.jobs) + "\" is not a number from 1 to " +
                    std::to_string(c_mostJobs),
                "give a number from 1 to " + std::to_string(c_mostJobs) +
                    "; without the option it is the number of processors");
}

int readManyLists(Context& context, const ListArguments& arguments, const ManyLists& many) {
  const std::size_t jobs = jobsOf(arguments);
  const GivenLists given(arguments.files);
  const std::vector<GivenList>& lists = given.all();
  RowTarget target = {formatOf(context), screenOf(context), context.quiet};
  if (many.isWide) target.screen.columns = 0;
  ListPrinter printer(target, many.layout, many.isSecret);
  Counts counts;
  int status = exitSuccess;
  std::vector<LogRecord> errors;
  {
    const bool isMixed = !isDocument(target.format) && isOutputTerminal();
    Progress progress(wantsProgress(context) && !isMixed, lists.size(), "lists");
    InOrder<Outcome> inOrder(
        lists.size(), jobs, [&](std::size_t index) { return readOne(many, target, lists[index]); });
    inOrder.run([&](std::size_t index, Outcome outcome) {
      add(outcome, counts);
      status = std::max(status, outcome.status);
      keepErrors(outcome.errors, errors);
      progress.show(index + 1);
      return printer.print(outcome.rows);
    });
  }
  setLogRecords(std::move(errors));
  if (counts.passwords != 0 && many.warn) {
    many.warn(numbered(counts.passwords, "password"), numbered(counts.listsWithPasswords, "list"));
  }
  printer.flush();
  if (!std::cout) throw Failure(exitFile, outputFailure(), c_checkOutput);
  printCounts(counts);
  Report report;
  report.facts = factsOf(counts);
  if (many.facts) {
    const Record more = many.facts(!lists.empty() && counts.failed == 0);
    report.facts.insert(report.facts.end(), more.begin(), more.end());
  }
  printer.describe(report);
  context.report = std::move(report);
  const bool isNothing = lists.empty() || (counts.rows == 0 && many.needsRow);
  return isNothing ? std::max<int>(status, exitNegative) : status;
}

}  // namespace tool
