#include <iostream>

#include "tools/sitelist/agent/agent_access.h"
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

int rewrite(Context& context, const RewriteOptions& options) {
  const AgentForWriting agent(context, options.destination);
  PasswordCheck passwords(context, options.allowLostPasswords);
  passwords.requireKeyOfOwnList();
  passwords.requireEncryptable(options.source);
  SiteList list = readWholeSiteList(options.source);
  agent.write(list);
  passwords.warn(false);
  if (list.fipsMode) {
    printWarning(shown(options.source) + ": the FIPS mode \"" + shown(*list.fipsMode) +
                 "\" is not kept");
  }
  std::cerr << "sitelist: wrote " << countEntries(list.sites.get()) << " to "
            << shown(options.destination) << '\n';
  return exitSuccess;
}

}  // namespace

void addRewrite(Command& app, Context& context) {
  Command command =
      app.add_subcommand("rewrite", "Read a site list and write it in the agent's own form");
  const auto options = std::make_shared<RewriteOptions>();
  command.add_option("SRC", options->source, "The list to read")
      .required()
      .type_name("")
      .completes(Completion::File);
  command.add_option("DST", options->destination, "The file for the result")
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
      "Example:\n"
      "  sitelist rewrite incoming/SiteList.xml tidy.xml\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return rewrite(context, *options); };
  });
}

}  // namespace tool
