#include <iostream>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/draft.h"
#include "tools/sitelist/agent/given_file.h"
#include "tools/sitelist/agent/password_check.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

struct RewriteOptions {
  std::string source;
  std::string destination;
  bool allowLostPasswords = false;
};

SiteList readSource(GivenFile& source, PasswordCheck& passwords) {
  passwords.requireEncryptable(source.path());
  SiteList list = readWholeSiteList(source.path());
  source.discard();  // the stored copy must not exist while the load command runs
  return list;
}

void warnOfFipsMode(const SiteList& list) {
  if (!list.fipsMode) return;
  printWarning(shown(list.path) + ": the FIPS mode \"" + shown(*list.fipsMode) + "\" is not kept");
}

int print(Context& context, const RewriteOptions& options) {
  requirePrintable(context, "the rewritten list", "name a file");
  GivenFile source(options.source);
  serveForPrinting(context);
  PasswordCheck passwords(context, options.allowLostPasswords);
  SiteList list = readSource(source, passwords);
  const std::string document = documentOf(list);
  std::cout << document << '\n';
  passwords.warn(false);
  warnOfFipsMode(list);
  return exitSuccess;
}

int rewrite(Context& context, const RewriteOptions& options) {
  if (isStandardStream(options.destination)) return print(context, options);
  GivenFile source(options.source);
  const AgentForWriting agent(context, options.destination);
  PasswordCheck passwords(context, options.allowLostPasswords);
  passwords.requireKeyOfOwnList();
  SiteList list = readSource(source, passwords);
  agent.write(list);
  passwords.warn(false);
  warnOfFipsMode(list);
  std::cerr << "sitelist: wrote " << countEntries(list.sites.get()) << " to "
            << shown(options.destination) << '\n';
  return exitSuccess;
}

}  // namespace

void addRewrite(Command& app, Context& context) {
  Command command =
      app.add_subcommand("rewrite", "Read a site list and write it in the agent's own form");
  const auto options = std::make_shared<RewriteOptions>();
  command.add_option("SRC", options->source, "The list to read; - means standard input")
      .required()
      .type_name("")
      .completes(Completion::File);
  command
      .add_option("DST", options->destination, "The file for the result; - means standard output")
      .required()
      .type_name("")
      .not_empty()
      .completes(Completion::File);
  addAllowLostPasswords(command, options->allowLostPasswords);
  command.footer(
      "Versions, type, certificates and policy settings are kept. Passwords are\n"
      "encrypted again with the password key. Everything that the agent does not read\n"
      "from a list is lost.\n"
      "\n"
      "Examples:\n"
      "  sitelist rewrite incoming/SiteList.xml tidy.xml\n"
      "  receive-list | sitelist rewrite - tidy.xml\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return rewrite(context, *options); };
  });
}

}  // namespace tool
