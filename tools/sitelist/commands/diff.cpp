#include "tools/sitelist/diff/diff.h"

#include <iostream>
#include <memory>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"

namespace tool {
namespace {

struct DiffOptions {
  std::string before;
  std::string after;
  bool exitCode = false;
  bool showSecrets = false;
};

SiteList read(const std::string& path) {
  SiteList list = readWholeSiteList(path);
  const std::vector<std::string> lost = sitesWithLostPasswords(path);
  if (lost.empty()) return list;
  std::cerr
      << "sitelist: " << shown(path)
      << ": warning: passwords that cannot be decrypted with the password key are compared as "
         "empty:";
  for (const std::string& name : lost) std::cerr << (&name == lost.data() ? " " : ", ") << name;
  std::cerr << '\n';
  return list;
}

int diff(Context& context, const DiffOptions& options) {
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
  Command command = app.add_subcommand("diff", "Show the differences between two site lists");
  const auto options = std::make_shared<DiffOptions>();
  command.add_option("BEFORE", options->before, "The old list")
      .required()
      .type_name("")
      .completes(Completion::File);
  command.add_option("AFTER", options->after, "The new list")
      .required()
      .type_name("")
      .completes(Completion::File);
  command.add_flag("--exit-code", options->exitCode, "Exit with status 1 if the lists differ");
  command.add_flag("--show-secrets", options->showSecrets,
                   "Print clear passwords instead of ********");
  command.footer(
      "Compares the content of the lists, not their formatting: versions, sites by kind\n"
      "and name, proxy settings, certificates and policy settings. A site counts as\n"
      "reordered if its order number or its position changed. Other fields that differ\n"
      "are listed one by one.\n"
      "\n"
      "Examples:\n"
      "  sitelist diff /Library/Korvel/orb/etc/SiteList.xml incoming/SiteList.xml\n"
      "  sitelist diff --exit-code --format json old.xml new.xml\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return diff(context, *options); };
  });
}

}  // namespace tool
