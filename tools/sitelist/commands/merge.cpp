#include <iostream>

#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/draft.h"
#include "tools/sitelist/agent/given_file.h"
#include "tools/sitelist/agent/password_check.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/diff/diff.h"
#include "tools/sitelist/model/root.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

struct MergeOptions {
  std::string first;
  std::string second;
  std::string output;
  bool dryRun = false;
  bool allowLostPasswords = false;
};

// The lists that the command line names. Their stored copies are removed as soon as possible,
// because they must not exist while the load command runs.
struct Sources {
  explicit Sources(const MergeOptions& options) : first(options.first), second(options.second) {}
  void discard() {
    first.discard();
    second.discard();
  }

  GivenFile first;
  GivenFile second;
};

bool isPrinted(const MergeOptions& options) {
  return options.output.empty() || isStandardStream(options.output);
}

SiteList readSource(const std::string& path, PasswordCheck& passwords) {
  passwords.requireEncryptable(path);
  return readWholeSiteList(path);
}

// All content except sites comes from the list that receives the sites: the second list or the
// agent's own. The result is a new copy, so the library makes its local version.
SiteList mergeLists(const std::string& ownList, Sources& sources, PasswordCheck& passwords) {
  SiteList first;
  SiteList base;
  const bool useFirst = !sources.first.path().empty();
  const bool useSecond = !sources.second.path().empty();
  if (useFirst) first = readSource(sources.first.path(), passwords);
  base = readSource(useSecond ? sources.second.path() : ownList, passwords);
  if (useSecond && !useFirst) passwords.requireEncryptable(ownList);

  sitehlp::CSitesHelper helper(wide(ownList));
  sitehlp::tag_Site* merged = nullptr;
  const int result = helper.MergeSiteLists(
      first.sites.get(), useSecond ? base.sites.get() : nullptr, useSecond, &merged);
  base.sites.reset(merged);
  base.localVersion.clear();
  base.path = "the merged list";
  if (result != 0) throw libraryFailure(ownList, result);
  if (useSecond && !first.sites) requireSiteList(ownList);
  return base;
}

// Prints how the list that receives the sites would change.
int previewMerge(Context& context, const MergeOptions& options) {
  Sources sources(options);
  serveForPreview(context);
  const std::string ownList = ownListPath(context);
  const SiteList before =
      readWholeSiteList(options.second.empty() ? ownList : sources.second.path());
  PasswordCheck passwords(context, options.allowLostPasswords);
  passwords.requireKeyOfOwnList();
  SiteList merged = mergeLists(ownList, sources, passwords);
  if (!isPrinted(options)) merged.path = options.output;
  SiteList after = asWritten(merged);
  after.localVersion = before.localVersion;  // the real one would be the time of the write
  const Diff diff(before, after, false);
  passwords.warn(true);
  context.report =
      diff.report("What would change from " + shown(before.path), "Nothing was written.");
  return exitSuccess;
}

int printMerge(Context& context, const MergeOptions& options) {
  requirePrintable(context, "the merged list", "write the list to a file with --output");
  Sources sources(options);
  serveForPrinting(context);
  PasswordCheck passwords(context, options.allowLostPasswords);
  SiteList merged = mergeLists(ownListPath(context), sources, passwords);
  const std::string document = documentOf(merged);
  sources.discard();  // the reader of standard output may make the tool wait
  std::cout << document << '\n';
  passwords.warn(false);
  return exitSuccess;
}

int merge(Context& context, const MergeOptions& options) {
  if (options.dryRun) return previewMerge(context, options);
  if (isPrinted(options)) return printMerge(context, options);
  Sources sources(options);
  const AgentForWriting agent(context, options.output);
  PasswordCheck passwords(context, options.allowLostPasswords);
  passwords.requireKeyOfOwnList();
  SiteList merged = mergeLists(ownListPath(context), sources, passwords);
  sources.discard();
  agent.write(merged);
  passwords.warn(false);
  std::cerr << "sitelist: wrote " << countEntries(merged.sites.get()) << " to "
            << shown(options.output) << '\n';
  return exitSuccess;
}

}  // namespace

void addMerge(Command& app, Context& context) {
  Command command = app.add_subcommand("merge", "Merge site lists into a new one");
  const auto options = std::make_shared<MergeOptions>();
  command.add_option("--first", options->first, "The first list; - means standard input")
      .type_name("FILE");
  command.add_option("--second", options->second, "The second list; - means standard input")
      .type_name("FILE");
  command
      .add_option("--output", options->output,
                  "The file for the result; - means standard output, the\ndefault")
      .type_name("FILE");
  command.add_flag("--dry-run", options->dryRun,
                   "Show the differences between the merged list and the\n"
                   "second list, and write nothing. Without --second, compare\n"
                   "with the agent's own list.");
  addAllowLostPasswords(command, options->allowLostPasswords);
  command.footer(
      "The result depends on the options:\n"
      "  --first   the agent's own list, with the fallback site and the management\n"
      "            servers of the first list\n"
      "  --second  the second list, with the fallback site and the management servers\n"
      "            of the agent's own list\n"
      "  both      the second list, then the first without its proxy settings\n"
      "  neither   the agent's own list\n"
      "Versions, certificates and policy settings are those of the second list or, if\n"
      "it is not given, of the agent's own. The local version is the current time.\n"
      "\n"
      "Examples:\n"
      "  sitelist merge --first incoming/SiteList.xml > merged.xml\n"
      "  receive-list | sitelist merge --first - --output merged.xml\n"
      "  sitelist merge --first a.xml --second b.xml --output merged.xml\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return merge(context, *options); };
  });
}

}  // namespace tool
