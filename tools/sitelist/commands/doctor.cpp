#include <memory>
#include <optional>

#include "tools/sitelist/agent/list_lock.h"
#include "tools/sitelist/cli/exit_status.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/doctor/diagnosis.h"
#include "tools/sitelist/doctor/diagnosis_report.h"
#include "tools/sitelist/doctor/read_only_files.h"

namespace tool {
namespace {

constexpr unsigned int c_defaultWait = 60000;

struct DoctorOptions {
  bool fix = false;
};

struct Examination {
  ExaminedAgent agent;
  std::vector<CheckResult> results;
};

std::unique_ptr<Examination> examine(const Context& context, unsigned int lockWait) {
  const ReadOnlyFiles unchanged;
  auto examination = std::make_unique<Examination>();
  examination->agent = examineAgent(context, lockWait);
  examination->results = diagnose(examination->agent);  // refers to the agent
  return examination;
}

bool canMendAny(const std::vector<CheckResult>& results) {
  for (const CheckResult& result : results) {
    for (const Finding& finding : result.findings) {
      if (finding.mend) return true;
    }
  }
  return false;
}

// Adds what was mended to the list of its check.
void mendEach(const std::vector<CheckResult>& results, bool isLast, Mended& mended) {
  for (const CheckResult& result : results) {
    for (const Finding& finding : result.findings) {
      if (!finding.mend || finding.isLast != isLast) continue;
      const std::string reason = finding.mend();
      if (reason.empty()) {
        mended[result.check].push_back(finding);
      } else {
        printWarning("not mended: " + finding.text + ": " + reason,
                     "check the owner, mode and content of " + shown(finding.file) +
                         ", and correct them by hand");
      }
    }
  }
}

// The mesh copy comes last, because its load command runs without the locks.
Mended mend(Context& context, const std::vector<CheckResult>& results) {
  const ListLock lock(context, "", ListUse::Mend);
  Mended mended;
  mendEach(results, false, mended);
  mendEach(results, true, mended);
  reportLoggedErrors(true);
  clearLogRecords();
  return mended;
}

int doctor(Context& context, const DoctorOptions& options) {
  const unsigned int lockWait = context.wait ? context.waitMilliseconds : c_defaultWait;
  auto examination = examine(context, lockWait);
  context.report = reportOf(context, examination->results, {});
  if (options.fix && !examination->agent.settingsError.empty()) {
    printWarning("nothing was mended, because the settings cannot be used",
                 "correct agent.toml, then run `sitelist doctor --fix` again");
  } else if (options.fix && canMendAny(examination->results)) {
    Mended mended = mend(context, examination->results);
    examination = examine(context, lockWait);
    mended = withoutRemaining(std::move(mended), examination->results);
    context.changed = !mended.empty();
    context.report = reportOf(context, examination->results, mended);
  }
  return hasFailure(examination->results) ? exitNegative : exitSuccess;
}

}  // namespace

void addDoctor(Command& app, Context& context) {
  Command command = app.add_subcommand("doctor", "Check the health of the agent, and mend faults");
  const auto options = std::make_shared<DoctorOptions>();
  command.add_flag("--fix", options->fix,
                   "Mend modes, owners, left-over files and the mesh copy, and\n"
                   "print each thing that was mended");
  command.footer(
      "Each check has one or more results: ok, warning or failure. A second line says\n"
      "what to do next. The exit status is 1 if there is a failure. Warnings do not\n"
      "change it. Without --fix, the command changes no file. The checks are:\n" +
      checkHelp() +
      "\n"
      "It is a failure if a process holds a lock for 60 seconds, or for the time of\n"
      "--wait. Less than 64 MiB of free space is a warning. It is a failure if there is\n"
      "too little space to write the list, or space for fewer than 16 more files.\n"
      "\n"
      "Run the command as the agent's user or as root: other users may not read all\n"
      "files.\n"
      "\n"
      "--fix adds no permission and follows no link of another user. Only root can\n"
      "change owners. Root gives a file to the agent's user only if its content is the\n"
      "expected one. The load command is run if the mesh copy was written.\n"
      "\n"
      "Examples:\n"
      "  sitelist doctor\n"
      "  sudo sitelist doctor --fix\n"
      "  sitelist doctor --wait 0 --format json\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return doctor(context, *options); };
  });
}

}  // namespace tool
