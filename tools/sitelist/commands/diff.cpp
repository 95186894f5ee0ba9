#include "tools/sitelist/diff/diff.h"

#include <memory>
#include <optional>
#include <utility>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/given_file.h"
#include "tools/sitelist/agent/lost_passwords.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/fleet/many_lists.h"
#include "tools/sitelist/history/history.h"

namespace tool {
namespace {

struct DiffOptions {
  std::string before;
  std::string after;
  std::vector<std::string> more;  // lists, with --to
  std::string base;
  std::string jobs;
  std::string number;  // in the history
  bool exitCode = false;
  bool showSecrets = false;
};

// Passwords that cannot be compared may differ. Without another difference, it is unknown
// whether the lists differ.
int reportIncomparable(const Diff& result, const DiffOptions& options) {
  const std::size_t count = result.incomparable();
  const std::string text = std::to_string(count) + (count == 1 ? " password" : " passwords") +
                           " cannot be compared, because the password key does not decrypt " +
                           (count == 1 ? "it" : "them");
  const std::string advice = "name the agent that the lists belong to with --agent-dir";
  if (options.exitCode && result.isEmpty()) throw Failure(exitCrypto, text, advice);
  printWarning(text, advice);
  return options.exitCode ? exitNegative : exitSuccess;
}

void warnOfIncomparablePasswordsInLists(const std::string& passwords, const std::string& lists) {
  printWarning(passwords + " in " + lists +
                   " cannot be compared, because the password key does not decrypt them",
               "compare lists of one agent, and name this agent with --agent-dir");
}

// Returns the names of the two lists. For a list of the history, also locks the agent's own list,
// so that no command removes the list from the history.
std::pair<std::string, std::string> namesOf(Context& context, const DiffOptions& options,
                                            std::optional<ListLock>& lock) {
  if (options.number.empty()) {
    if (!options.after.empty()) return {options.before, options.after};
    throw Failure(exitUsage, "BEFORE or AFTER is missing", "give two lists, or --history NUMBER");
  }
  if (!options.before.empty()) {
    throw Failure(exitUsage, "--history cannot be used with BEFORE and AFTER",
                  "omit the lists; --history compares with the agent's own list");
  }
  lock.emplace(context, "", ListUse::Read);
  const std::string own = ownListPath(context);
  return {historyEntry(own, options.number).path, own};
}

EncryptedPasswords withPasswordsOf(const SiteList& list, EncryptedPasswords unread) {
  unread.merge(unreadPasswordsOf(list));
  return unread;
}

int diffMany(Context& context, const DiffOptions& options, const ListArguments& lists) {
  GivenFile givenBase(options.base);
  serveDetachedAgent(context);
  const SiteList base = readWholeSiteList(givenBase.path());
  const EncryptedPasswords unreadOfBase = unreadPasswordsOf(base);
  ManyLists many;
  many.layout.rowsName = "changes";
  many.layout.rowName = "change";
  many.layout.columns = Diff::columns();
  many.layout.tableColumns = {"change", "name", "field", "before", "after"};
  many.isSecret = options.showSecrets;
  many.warn = warnOfIncomparablePasswordsInLists;
  many.read = [&](const GivenList& given, ListRows& rows) {
    const SiteList list = readWholeSiteList(given.path);
    const Diff result(base, list, options.showSecrets, withPasswordsOf(list, unreadOfBase));
    for (const Record& row : result.rows()) rows.add(row);
    rows.countPasswords(result.incomparable());
    if (!options.exitCode) return exitSuccess;
    if (!result.isEmpty()) return exitNegative;
    return result.incomparable() == 0 ? exitSuccess : exitCrypto;
  };
  many.facts = [&](bool) { return Record{{"before", reportedName(base.path)}}; };
  return readManyLists(context, lists, many);
}

// Returns the lists to compare with the one after --to.
ListArguments listsToCompare(const DiffOptions& options) {
  ListArguments lists = {options.more, options.jobs};
  for (const std::string* file : {&options.after, &options.before}) {
    if (!file->empty()) lists.files.insert(lists.files.begin(), *file);
  }
  if (lists.files.empty()) {
    throw Failure(exitUsage, "no list to compare with " + shown(options.base) + " is given",
                  "name lists or directories after --to " + shown(options.base));
  }
  if (!options.number.empty()) {
    throw Failure(exitUsage, "--history and --to cannot be used together", "give only one of them");
  }
  return lists;
}

int diff(Context& context, DiffOptions options) {
  if (!options.base.empty()) {
    const ListArguments lists = listsToCompare(options);
    if (areMany(lists)) return diffMany(context, options, lists);
    options.before = options.base;
    options.after = lists.only();
  } else if (!options.more.empty()) {
    throw Failure(exitUsage, "more than two lists are given",
                  "name the list to compare with: --to BASE_FILE");
  }
  std::optional<ListLock> lock;
  const auto [from, to] = namesOf(context, options, lock);
  GivenFile givenBefore(from);
  GivenFile givenAfter(to);
  serveDetachedAgent(context);
  const SiteList before = readWholeSiteList(givenBefore.path());
  const SiteList after = readWholeSiteList(givenAfter.path());
  EncryptedPasswords unread = unreadPasswordsOf(before);
  unread.merge(unreadPasswordsOf(after));
  const Diff result(before, after, options.showSecrets, std::move(unread));
  context.report = result.report("From " + shown(before.path) + "\n  to " + shown(after.path), "");
  if (result.incomparable() != 0) return reportIncomparable(result, options);
  return options.exitCode && !result.isEmpty() ? exitNegative : exitSuccess;
}

}  // namespace

void addDiff(Command& app, Context& context) {
  Command command = app.add_subcommand("diff", "Show the differences between two site lists");
  const auto options = std::make_shared<DiffOptions>();
  command.add_option("BEFORE", options->before, "The old list")
      .type_name("")
      .completes(Completion::File);
  command.add_option("AFTER", options->after, "The new list")
      .type_name("")
      .completes(Completion::File);
  command
      .add_option("FILE", options->more,
                  "With --to, further lists, or directories in which all\nfiles \"SiteList.xml\" "
                  "are compared")
      .type_name("")
      .completes(Completion::File);
  command
      .add_option("--to", options->base,
                  "Compare this list, as the old one, with each given list\nor directory of lists")
      .type_name("BASE_FILE")
      .not_empty();
  addJobs(command, options->jobs);
  command
      .add_option("--history", options->number,
                  "Compare the list with this number in `sitelist history`\nwith the agent's own "
                  "list")
      .type_name("NUMBER")
      .not_empty();
  command.add_flag("--exit-code", options->exitCode, "Exit with status 1 if the lists differ");
  command.add_flag("--show-secrets", options->showSecrets,
                   "Print clear passwords instead of ********");
  command.footer(
      "Compares the content of the lists, not their formatting: versions, sites by kind\n"
      "and name, proxy settings, certificates and policy settings. A site counts as\n"
      "reordered if its order number or its position changed. Other fields that differ\n"
      "are listed one by one.\n"
      "\n"
      "A password that the password key does not decrypt is compared in its encrypted\n"
      "form. If the two forms differ, the passwords cannot be compared, because every\n"
      "encryption of a password differs. They are listed as incomparable. With\n"
      "--exit-code the exit status is then 5, or 1 if the lists differ elsewhere.\n"
      "\n"
      "--to compares BASE_FILE with many lists. Each row is one change from BASE_FILE\n"
      "to the list that the row names. A list without a row has the same content as\n"
      "BASE_FILE. The exit status is the highest of all lists.\n"
      "\n"
      "Examples:\n"
      "  sitelist diff /Library/Korvel/orb/etc/SiteList.xml incoming/SiteList.xml\n"
      "  sitelist diff --exit-code --format json old.xml new.xml\n"
      "  sitelist diff --history 3\n"
      "  sitelist diff --to reference.xml fleet/ --format jsonl\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return diff(context, *options); };
  });
}

}  // namespace tool
