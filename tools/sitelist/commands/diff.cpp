#include "tools/sitelist/diff/diff.h"

#include <iostream>
#include <memory>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"

namespace tool {
namespace {

struct Options {
  std::string before;
  std::string after;
  bool exitCode = false;
  bool showSecrets = false;
};

SiteList read(const std::string& path) {
  SiteList list = readWholeSiteList(path);
  const std::vector<std::string> lost = sitesWithLostPasswords(path);
  if (lost.empty()) return list;
  std::cerr << "sitelist: " << shown(path)
            << ": compared as empty, for the agent's key does not open them: the passwords of";
  for (const std::string& name : lost) std::cerr << (&name == lost.data() ? " " : ", ") << name;
  std::cerr << '\n';
  return list;
}

int diff(Context& context, const Options& options) {
  const PrivateAgent agent(context);
  const SiteList before = read(options.before);
  const SiteList after = read(options.after);
  const Diff result(before, after, options.showSecrets);
  context.report =
      result.report("From " + shown(options.before) + "\n  to " + shown(options.after), "");
  return options.exitCode && !result.isEmpty() ? exitNegative : exitSuccess;
}

}  // namespace

void addDiff(Command& app, Context& context) {
  Command command = app.add_subcommand("diff", "Print in what two site lists differ");
  const auto options = std::make_shared<Options>();
  command.add_option("BEFORE", options->before, "The one list")
      .required()
      .type_name("")
      .completes(Completion::File);
  command.add_option("AFTER", options->after, "The other list")
      .required()
      .type_name("")
      .completes(Completion::File);
  command.add_flag("--exit-code", options->exitCode, "Exit with 1 when they differ");
  command.add_flag("--show-secrets", options->showSecrets,
                   "Print clear passwords instead of ********");
  command.footer(
      "Compares what the lists say, not how they are written: versions, sites by kind\n"
      "and name, proxy settings, certificates and policy settings. A site is reordered\n"
      "when its order is another, or when it stands elsewhere in the list; the rest of\n"
      "its fields are told as changed, one by one.\n"
      "\n"
      "Examples:\n"
      "  sitelist diff /Library/Korvel/orb/etc/SiteList.xml incoming/SiteList.xml\n"
      "  sitelist diff --exit-code --format json old.xml new.xml\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return diff(context, *options); };
  });
}

}  // namespace tool
