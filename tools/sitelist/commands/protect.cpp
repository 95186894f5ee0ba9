#include <ostream>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/change_watch.h"
#include "tools/sitelist/agent/lost_passwords.h"
#include "tools/sitelist/agent/password.h"
#include "tools/sitelist/agent/password_check.h"
#include "tools/sitelist/cli/exit_status.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"

namespace tool {
namespace {

int protectLine(Context& context) {
  serveAgent(context);
  Password password;
  password.read("");
  PasswordCheck(context, false).requireKeyOfOwnList();
  const ChangeWatch watch(context, {passwordKeyPath(context.agentDirectory)});
  const std::string text = narrow(protect(context, password));
  Report report;
  report.facts = {{"protected", text}};
  report.table = [text](std::ostream& out, const Screen&) { out << text << '\n'; };
  context.report = std::move(report);
  return exitSuccess;
}

}  // namespace

void addProtect(Command& app, Context& context) {
  Command command = app.add_subcommand("protect", "Encrypt a password and print the result");
  command.takes_password();
  command.footer(
      "The command reads the clear password from the first line of standard input.\n"
      "Only an agent with the same password key can decrypt the result. Put it\n"
      "unchanged into a \"Password\" element, without white space around it.\n"
      "\n"
      "Examples:\n"
      "  sitelist protect\n"
      "  sitelist protect < password.txt\n");
  command.callback([&context] { context.action = [&context] { return protectLine(context); }; });
}

}  // namespace tool
