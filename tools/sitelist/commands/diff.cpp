#include "tools/sitelist/diff/diff.h"

#include <memory>
#include <optional>
#include <utility>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/given_file.h"
#include "tools/sitelist/agent/lost_passwords.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/history/history.h"

namespace tool {
namespace {

struct DiffOptions {
  std::string before;
  std::string after;
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

int diff(Context& context, const DiffOptions& options) {
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
      "Examples:\n"
      "  sitelist diff /Library/Korvel/orb/etc/SiteList.xml incoming/SiteList.xml\n"
      "  sitelist diff --exit-code --format json old.xml new.xml\n"
      "  sitelist diff --history 3\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return diff(context, *options); };
  });
}

}  // namespace tool
