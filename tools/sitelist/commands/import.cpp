#include "tools/sitelist/agent/incoming.h"

namespace tool {

void addImport(Command& app, Context& context) {
  Command command =
      app.add_subcommand("import", "Check an incoming list and make it the agent's own list");
  const auto options = std::make_shared<IncomingOptions>();
  options->isChecked = true;
  addIncomingOptions(command, *options);
  command.footer(
      "The root of the document must be \"SiteLists\". If the agent is managed, the\n"
      "management server is checked as well; see `sitelist validate --help`.\n"
      "\n"
      "Examples:\n"
      "  sitelist import incoming/SiteList.xml\n"
      "  sitelist import --dry-run incoming/SiteList.xml\n"
      "  sitelist import --keys ./keys lists/old-server.xml\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return takeIncoming(context, *options); };
  });
}

}  // namespace tool
