#include "tools/sitelist/agent/incoming.h"

namespace tool {

void addInstall(Command& app, Context& context) {
  Command command =
      app.add_subcommand("install", "Make an incoming list the agent's own list, without checks");
  const auto options = std::make_shared<IncomingOptions>();
  options->isChecked = false;
  addIncomingOptions(command, *options);
  command.add_flag("--allow-empty", options->allowEmpty,
                   "Install the list even if it has no sites");
  command.footer(
      "The sites of the list are not checked. The root of the document must be\n"
      "\"SiteLists\".\n\n"
      "Examples:\n"
      "  sitelist install incoming/SiteList.xml\n"
      "  sitelist install --keys ./keys lists/old-server.xml\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return takeIncoming(context, *options); };
  });
}

}  // namespace tool
