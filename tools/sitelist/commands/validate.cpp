#include <algorithm>
#include <atomic>
#include <memory>
#include <ostream>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/given_file.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/fleet/list_summary.h"
#include "tools/sitelist/fleet/many_lists.h"
#include "tools/sitelist/validate/validation.h"

namespace tool {
namespace {

struct ValidateOptions {
  ListArguments lists;
  bool managed = false;
  bool unmanaged = false;
  bool strict = false;
};

struct CheckedList {
  std::string name;
  std::vector<Fault> faults;
  bool isValid = true;
};

bool counts(const Fault& fault, bool strict) {
  return strict || fault.rule->severity == Severity::Error;
}

void printList(std::ostream& out, const Screen& screen, const CheckedList& list) {
  for (const Fault& fault : list.faults) out << lineOf(list.name, fault, screen) << '\n';
  if (list.isValid) out << shown(list.name) << ": " << screen.styled(Style::Good, "valid") << '\n';
}

Record faultRow(const CheckedList& list, const Fault& fault) {
  const auto orNull = [](unsigned long number) {
    return number == 0 ? Scalar() : Scalar(static_cast<std::int64_t>(number));
  };
  return {{"file", narrow(wide(list.name))},
          {"line", orNull(fault.place.line)},
          {"column", orNull(fault.place.column)},
          {"severity", std::string(nameOf(fault.rule->severity))},
          {"rule", std::string(fault.rule->name)},
          {"text", fault.text},
          {"site", fault.site.empty() ? Scalar() : Scalar(narrow(fault.site))}};
}

Report reportOf(CheckedList list, bool strict) {
  std::int64_t faults = 0;
  std::int64_t warnings = 0;
  Report report;
  report.rowsName = "faults";
  report.rowName = "fault";
  report.columns = {"file", "line", "column", "severity", "rule", "text", "site"};
  for (const Fault& fault : list.faults) {
    report.rows.push_back(faultRow(list, fault));
    ++(counts(fault, strict) ? faults : warnings);
  }
  report.facts = {{"valid", faults == 0}, {"faultCount", faults}, {"warningCount", warnings}};
  report.table = [list = std::move(list)](std::ostream& out, const Screen& screen) {
    printList(out, screen, list);
  };
  return report;
}

void requireSense(const ValidateOptions& options) {
  if (options.managed && options.unmanaged) {
    throw Failure(exitUsage, "--managed and --unmanaged cannot be used together",
                  "give at most one of them");
  }
  if (std::count_if(options.lists.files.begin(), options.lists.files.end(), isStandardInput) > 1) {
    throw Failure(exitUsage, "standard input can be read only once", "give \"-\" at most once");
  }
}

CheckedList check(const std::string& file, bool checkServer) {
  if (!isReadOnce(file)) return {file, validateList({file, file}, checkServer)};
  Input input;
  if (const int error = tryReadInput(file, input)) {
    return {input.name, {faultOfReading(readErrorOf(error))}};
  }
  const ScratchDirectory scratch;
  return {input.name, validateList({input.name, storeInput(scratch, input), false}, checkServer)};
}

// Sets whether the list is valid and returns the exit status for it.
int judge(CheckedList& list, bool strict) {
  int status = exitSuccess;
  for (const Fault& fault : list.faults) {
    if (!counts(fault, strict)) continue;
    list.isValid = false;
    status = std::max<int>(status, std::max(fault.rule->status, exitNegative));
  }
  return status;
}

// The numbers of faults in several lists, which are checked in several threads.
struct FaultCounts {
  std::atomic<std::int64_t> faults{0};
  std::atomic<std::int64_t> warnings{0};
};

int addFaults(const GivenList& given, const ValidateOptions& options, FaultCounts& all,
              ListRows& rows) {
  CheckedList list = {rows.file(), faultsOf(given, !options.unmanaged)};
  const int status = judge(list, options.strict);
  for (const Fault& fault : list.faults) {
    ++(counts(fault, options.strict) ? all.faults : all.warnings);
    Record row = faultRow(list, fault);
    row.erase(row.begin());  // the file is added to every row
    rows.add(row, lineOf(list.name, fault, rows.screen()));
  }
  if (list.isValid) {
    rows.addLine(shown(list.name) + ": " + rows.screen().styled(Style::Good, "valid"));
  }
  if (status > exitNegative) rows.countAsFailed();
  return status;
}

int validateMany(Context& context, const ValidateOptions& options) {
  ManyLists many;
  FaultCounts all;
  many.layout.rowsName = "faults";
  many.layout.rowName = "fault";
  many.layout.columns = {"line", "column", "severity", "rule", "text", "site"};
  many.layout.printsLines = true;
  many.takesErrors = true;
  many.read = [&](const GivenList& list, ListRows& rows) {
    return addFaults(list, options, all, rows);
  };
  many.facts = [&all](bool areAllRead) {
    return Record{{"valid", areAllRead && all.faults == 0},
                  {"faultCount", all.faults.load()},
                  {"warningCount", all.warnings.load()}};
  };
  return readManyLists(context, options.lists, many);
}

int validate(Context& context, const ValidateOptions& options) {
  requireSense(options);
  serveNoAgent(context);
  if (areMany(options.lists)) return validateMany(context, options);
  CheckedList list = check(options.lists.only(), !options.unmanaged);
  const int status = judge(list, options.strict);
  context.report = reportOf(std::move(list), options.strict);
  clearLogRecords();
  return status;
}

}  // namespace

void addValidate(Command& app, Context& context) {
  Command command = app.add_subcommand("validate", "Check whether site lists can be imported");
  const auto options = std::make_shared<ValidateOptions>();
  command
      .add_option("FILE", options->lists.files,
                  "Site lists, or directories in which all files\n\"SiteList.xml\" are checked; - "
                  "means standard input")
      .required()
      .type_name("")
      .completes(Completion::File);
  addJobs(command, options->lists.jobs);
  command.add_flag("--managed", options->managed,
                   "Apply the rules for a managed agent, including those\n"
                   "for the management server (default)");
  command.add_flag("--unmanaged", options->unmanaged, "Apply the rules for an unmanaged agent");
  command.add_flag("--strict", options->strict, "Treat warnings as errors");
  command.footer(
      "The command needs no agent and writes nothing. Each fault is one line:\n"
      "  FILE:LINE:COLUMN: RULE: TEXT\n"
      "If a fault has no place in the file, LINE:COLUMN is omitted. `sitelist\n"
      "explain-rule RULE` explains a rule and how to fix a list that breaks it.\n"
      "\n"
      "Errors (the agent refuses the list):\n" +
      ruleHelp(Severity::Error) +
      "The rules for the server apply to the first management server in the list.\n"
      "\n"
      "Warnings (the agent accepts the list, but probably reads it differently than\n"
      "intended); their lines end in [warning]:\n" +
      ruleHelp(Severity::Warning) +
      "The exit status is 1 if a list has an error. It is 3 for invalid-encoding,\n"
      "over-limit, not-well-formed and unknown-site, and 4 for missing-file and\n"
      "unreadable-file. With several lists, it is the highest of all.\n"
      "\n"
      "A directory stands for all its files \"SiteList.xml\", at any depth.\n\n"
      "Examples:\n"
      "  sitelist validate incoming/SiteList.xml\n"
      "  sitelist validate --unmanaged --strict lists/*.xml\n"
      "  sitelist validate fleet/ --format jsonl\n"
      "  ssh server cat SiteList.xml | sitelist validate - --format json\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return validate(context, *options); };
  });
}

}  // namespace tool
